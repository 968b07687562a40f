#include "options_dialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "qt_text.h"

namespace korvatek::gui {

using settings::CaptionKey;

namespace {

QCheckBox* makeCheckBox(const char* name, QWidget* parent) {
    auto* box = new QCheckBox(parent);
    box->setObjectName(QLatin1String(name));
    return box;
}

QPushButton* makeButton(const char* name, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setObjectName(QLatin1String(name));
    return button;
}

}  // namespace

OptionsDialog::OptionsDialog(app::Workspace& workspace, settings::SettingsStore& store,
                             settings::AssociationStore& associations, std::string executablePath, QWidget* parent)
    : QDialog(parent),
      m_ws(workspace),
      m_store(store),
      m_associations(associations),
      m_executablePath(std::move(executablePath)) {
    setObjectName(QStringLiteral("frmOptions"));
    buildControls();
    dialogStart();
}

void OptionsDialog::buildControls() {
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tbsOptions"));

    // "view": how the tool speaks to the person.
    auto* view = new QWidget;
    auto* languages = new QGroupBox(view);
    auto* languageLayout = new QVBoxLayout(languages);
    auto* group = new QButtonGroup(this);
    for (int i = 0; i < 5; ++i) {
        m_languages[i] = new QRadioButton(languages);
        m_languages[i]->setObjectName(QStringLiteral("Option%1").arg(i + 1));
        group->addButton(m_languages[i], i + 1);
        languageLayout->addWidget(m_languages[i]);
    }
    m_check3 = makeCheckBox("Check3", view);
    m_check4 = makeCheckBox("Check4", view);
    auto* viewLayout = new QVBoxLayout(view);
    viewLayout->addWidget(languages);
    viewLayout->addWidget(m_check3);
    viewLayout->addWidget(m_check4);
    viewLayout->addStretch();

    // "other": the file associations.
    auto* other = new QWidget;
    m_check1 = makeCheckBox("Check1", other);
    m_check2 = makeCheckBox("Check2", other);
    auto* otherLayout = new QVBoxLayout(other);
    otherLayout->addWidget(m_check1);
    otherLayout->addWidget(m_check2);
    otherLayout->addStretch();

    m_tabs->addTab(view, QString());
    m_tabs->addTab(other, QString());

    m_ok = makeButton("cmdOK", this);
    m_cancel = makeButton("cmdCancel", this);
    m_apply = makeButton("cmdApply", this);
    m_defaults = makeButton("cmdDefaults", this);
    m_ok->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_defaults);
    buttons->addStretch();
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_apply);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addLayout(buttons);

    for (QRadioButton* option : m_languages) connect(option, &QRadioButton::toggled, this, &OptionsDialog::markChanged);
    for (QCheckBox* box : {m_check1, m_check2, m_check3, m_check4})
        connect(box, &QCheckBox::toggled, this, &OptionsDialog::markChanged);
    connect(m_ok, &QPushButton::clicked, this, &OptionsDialog::cmdOK_Click);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_apply, &QPushButton::clicked, this, &OptionsDialog::cmdApply_Click);
    connect(m_defaults, &QPushButton::clicked, this, &OptionsDialog::cmdDefaults_Click);
}

void OptionsDialog::dialogStart() {
    m_starting = true;
    const settings::StoredSettings stored = settings::RegistryReadSettings(m_store);
    m_ws.LanguageIndex = stored.LanguageIndex;
    m_ws.ShowSuccessMessage = stored.showSuccessMessage;
    m_ws.ShowReplaceMessage = stored.showReplaceMessage;

    // The language routine sets the texts of both windows; outside 1 to 5 none runs.
    m_ws.applyLanguage(m_ws.LanguageIndex);
    retranslate();
    emit languageApplied();

    m_check3->setChecked(m_ws.ShowSuccessMessage);
    m_check4->setChecked(m_ws.ShowReplaceMessage);

    // A stored language outside 1 to 5 leaves every option button clear.
    QButtonGroup* group = m_languages[0]->group();
    group->setExclusive(false);
    for (int i = 0; i < 5; ++i) m_languages[i]->setChecked(m_ws.LanguageIndex == i + 1);
    group->setExclusive(true);

    m_check1->setChecked(settings::isAssociated(m_associations, settings::kGpfExtension, m_executablePath));
    m_check2->setChecked(settings::isAssociated(m_associations, settings::kGpf2Extension, m_executablePath));

    m_apply->setEnabled(false);
    m_starting = false;
}

void OptionsDialog::retranslate() {
    const settings::MessageTable& table = m_ws.messages;
    const auto text = [&table](CaptionKey key) { return captionText(table.caption(key)); };
    setWindowTitle(toQString(table.caption(CaptionKey::frmOptions)));
    m_tabs->setTabText(0, text(CaptionKey::tbsOptionsView));
    m_tabs->setTabText(1, text(CaptionKey::tbsOptionsOther));
    static constexpr std::array<CaptionKey, 5> kOptions{CaptionKey::Option1, CaptionKey::Option2, CaptionKey::Option3,
                                                        CaptionKey::Option4, CaptionKey::Option5};
    for (int i = 0; i < 5; ++i) m_languages[i]->setText(text(kOptions[i]));
    m_check1->setText(text(CaptionKey::Check1));
    m_check2->setText(text(CaptionKey::Check2));
    m_check3->setText(text(CaptionKey::Check3));
    m_check4->setText(text(CaptionKey::Check4));
    m_ok->setText(text(CaptionKey::cmdOK));
    m_cancel->setText(text(CaptionKey::cmdCancel));
    m_apply->setText(text(CaptionKey::cmdApply));
    m_defaults->setText(text(CaptionKey::cmdDefaults));
}

void OptionsDialog::markChanged() {
    if (!m_starting) m_apply->setEnabled(true);
}

int OptionsDialog::selectedLanguage() const {
    for (int i = 0; i < 5; ++i)
        if (m_languages[i]->isChecked()) return i + 1;
    return 0;
}

void OptionsDialog::cmdApply_Click() {
    // A clear box removes nothing.
    if (m_check1->isChecked()) settings::registerExtension(m_associations, settings::kGpfExtension, m_executablePath);
    if (m_check2->isChecked()) settings::registerExtension(m_associations, settings::kGpf2Extension, m_executablePath);

    m_ws.ShowSuccessMessage = m_check3->isChecked();
    m_ws.ShowReplaceMessage = m_check4->isChecked();

    if (const int language = selectedLanguage(); language != 0) {
        m_ws.applyLanguage(language);
        retranslate();
        emit languageApplied();
    }

    settings::writeSettings(m_store, {m_ws.LanguageIndex, m_ws.ShowSuccessMessage, m_ws.ShowReplaceMessage});
    m_apply->setEnabled(false);
}

void OptionsDialog::cmdOK_Click() {
    cmdApply_Click();
    accept();
}

void OptionsDialog::cmdDefaults_Click() {
    for (const char* name : {settings::kLanguageValue, settings::kSuccessValue, settings::kReplaceValue})
        m_store.deleteValue(name);
    dialogStart();
}

}  // namespace korvatek::gui
