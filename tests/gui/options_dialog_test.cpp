// frmOptions: the settings it reads and writes, Apply, Defaults, and the language switched
// live in both windows.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

#include "options_dialog.h"
#include "qsettings_store.h"
#include "qt_text.h"
#include "settings/message_table.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

using settings::CaptionKey;

struct Stored {
    std::optional<std::uint32_t> language, success, replace;
    bool operator==(const Stored&) const = default;
};

Stored storedIn(const QString& ini) {
    QSettingsStore store(ini);
    return {store.readDword("Language"), store.readDword("MSGsucces"), store.readDword("MSGreplace")};
}

QString caption(const settings::LanguageTexts& language, CaptionKey key) {
    return QString::fromUtf8(language.captions[static_cast<std::size_t>(key)]);
}

// Every control whose caption a language routine sets, with its key: a main-window menu item
// or submenu of that name, or a dialog control.
const std::vector<std::pair<CaptionKey, const char*>>& menuCaptions() {
    static const std::vector<std::pair<CaptionKey, const char*>> items{
        {CaptionKey::mnu_File, "mnu_File"},
        {CaptionKey::mnu_FileOpen, "mnu_FileOpen"},
        {CaptionKey::mnu_FileExit, "mnu_FileExit"},
        {CaptionKey::mnu_Tools, "mnu_Tools"},
        {CaptionKey::mnu_ToolsMake, "mnu_ToolsMake"},
        {CaptionKey::mnu_ToolsConvertLumbrapatch, "mnu_ToolsConvertLumbrapatch"},
        {CaptionKey::mnu_Options, "mnu_Options"},
        {CaptionKey::mnu_About, "mnu_About"},
        {CaptionKey::mnuPopup_LoadGPF, "mnuPopup_LoadGPF"},
        {CaptionKey::mnuPopup_LoadGPFfolder, "mnuPopup_LoadGPFfolder"},
        {CaptionKey::mnuPopup_LoadBMP, "mnuPopup_LoadBMP"},
        {CaptionKey::mnuPopup_LoadBMPs, "mnuPopup_LoadBMPs"},
        {CaptionKey::mnuPopup_SaveGPF, "mnuPopup_SaveGPF"},
        {CaptionKey::mnuPopup_SaveAllGPF, "mnuPopup_SaveAllGPF"},
        {CaptionKey::mnuPopup_SaveBMP, "mnuPopup_SaveBMP"},
        {CaptionKey::mnuPopup_SaveAllBMP, "mnuPopup_SaveAllBMP"},
        {CaptionKey::mnuPopup_SavePatch, "mnuPopup_SavePatch"},
        {CaptionKey::mnuPopup_CopyColumnHeader, "mnuPopup_CopyColumnHeader"},
        {CaptionKey::mnuPopup2_LoadBMP, "mnuPopup2_LoadBMP"},
        {CaptionKey::mnuPopup2_LoadBMPfolder, "mnuPopup2_LoadBMPfolder"},
        {CaptionKey::mnuPopup2_SaveBMP, "mnuPopup2_SaveBMP"},
        {CaptionKey::mnuPopup2_SaveAllBMP, "mnuPopup2_SaveAllBMP"},
        {CaptionKey::mnuPopup2_SavePatch, "mnuPopup2_SavePatch"},
        {CaptionKey::mnuPopup2_MakeF, "mnuPopup2_MakeF"},
        {CaptionKey::mnuPopup2_ChangeFSize, "mnuPopup2_ChangeFSize"},
        {CaptionKey::mnuPopup2_CopyColumnHeader, "mnuPopup2_CopyColumnHeader"},
        {CaptionKey::Option1, "Option1"},
        {CaptionKey::Option2, "Option2"},
        {CaptionKey::Option3, "Option3"},
        {CaptionKey::Option4, "Option4"},
        {CaptionKey::Option5, "Option5"},
        {CaptionKey::Check1, "Check1"},
        {CaptionKey::Check2, "Check2"},
        {CaptionKey::Check3, "Check3"},
        {CaptionKey::Check4, "Check4"},
        {CaptionKey::cmdOK, "cmdOK"},
        {CaptionKey::cmdCancel, "cmdCancel"},
        {CaptionKey::cmdApply, "cmdApply"},
        {CaptionKey::cmdDefaults, "cmdDefaults"},
    };
    return items;
}

// The caption a person reads on the control of that name.
QString shownCaption(QObject* root, const char* name) {
    if (auto* menu = root->findChild<QMenu*>(name)) return plainCaption(menu->title());
    if (auto* action = root->findChild<QAction*>(name)) return plainCaption(action->text());
    if (auto* button = root->findChild<QAbstractButton*>(name)) return plainCaption(button->text());
    return QStringLiteral("<no control %1>").arg(QLatin1String(name));
}

// Every caption of both windows and every message against one language.
void expectLanguage(Form1& window, OptionsDialog& dialog, const settings::LanguageTexts& language) {
    for (const auto& [key, name] : menuCaptions()) {
        QObject* root = QByteArray(name).startsWith("mnu") ? static_cast<QObject*>(&window) : &dialog;
        QCOMPARE(shownCaption(root, name), caption(language, key));
    }
    auto* tabs = window.findChild<QTabBar*>("TabStrip1");
    QCOMPARE(tabs->tabText(0), caption(language, CaptionKey::TabPictures));
    QCOMPARE(tabs->tabText(1), caption(language, CaptionKey::TabFonts));
    QCOMPARE(window.findChild<QComboBox*>("Ftype")->placeholderText(), caption(language, CaptionKey::FtypeText));
    auto* pages = dialog.findChild<QTabWidget*>("tbsOptions");
    QCOMPARE(pages->tabText(0), caption(language, CaptionKey::tbsOptionsView));
    QCOMPARE(pages->tabText(1), caption(language, CaptionKey::tbsOptionsOther));
    QCOMPARE(dialog.windowTitle(), caption(language, CaptionKey::frmOptions));
    for (std::size_t i = 0; i < settings::kMessageCount; ++i)
        QCOMPARE(QString::fromStdString(window.workspace().messages.text(static_cast<settings::MessageKey>(i))),
                 QString::fromUtf8(language.messages[i]));
}

}  // namespace

class OptionsDialogTest : public QObject {
    Q_OBJECT
private slots:
    void init() {
        m_ini = freshFolder("settings") + "/Korvatek.ini";
        m_window = makeWindow(m_ini);
        m_window->startUp({});
        m_dialog = m_window->makeOptionsDialog();
    }
    void cleanup() {
        m_dialog.reset();
        m_window.reset();
    }

    void startShowsTheStoredSettings() {
        QVERIFY(radio("Option2")->isChecked());
        QVERIFY(box("Check3")->isChecked() && box("Check4")->isChecked());
        QVERIFY(!box("Check1")->isChecked() && !box("Check2")->isChecked());
        QVERIFY(!button("cmdApply")->isEnabled());
    }

    void applyIsEnabledByAChangeAndWritesTheSettings() {
        box("Check3")->click();
        QVERIFY(button("cmdApply")->isEnabled());
        radio("Option5")->click();
        button("cmdApply")->click();
        QVERIFY(!button("cmdApply")->isEnabled());
        QCOMPARE(storedIn(m_ini), (Stored{5, 0, 1}));
        QCOMPARE(m_window->workspace().LanguageIndex, 5);
        QVERIFY(!m_window->workspace().ShowSuccessMessage);
        QCOMPARE(m_window->findChild<QMenu*>("mnu_File")->title(),
                 caption(settings::LanguagePL(), CaptionKey::mnu_File));
    }

    void cancelAppliesNothingAndOkApplies() {
        radio("Option3")->click();
        box("Check4")->click();
        button("cmdCancel")->click();
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        QCOMPARE(storedIn(m_ini), (Stored{2, 1, 1}));
        QCOMPARE(m_window->workspace().LanguageIndex, 2);

        m_dialog = m_window->makeOptionsDialog();
        QVERIFY(radio("Option2")->isChecked() && box("Check4")->isChecked());
        box("Check4")->click();
        button("cmdOK")->click();
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(storedIn(m_ini), (Stored{2, 1, 0}));
        QVERIFY(!m_window->workspace().ShowReplaceMessage);
    }

    void defaultsRestoreAndStayAfterCancel() {
        radio("Option1")->click();
        box("Check3")->click();
        box("Check4")->click();
        button("cmdApply")->click();
        QCOMPARE(storedIn(m_ini), (Stored{1, 0, 0}));

        button("cmdDefaults")->click();
        QCOMPARE(storedIn(m_ini), (Stored{2, 1, 1}));
        QVERIFY(radio("Option2")->isChecked());
        QVERIFY(box("Check3")->isChecked() && box("Check4")->isChecked());
        QVERIFY(!button("cmdApply")->isEnabled());
        QCOMPARE(m_window->workspace().LanguageIndex, 2);
        expectLanguage(*m_window, *m_dialog, settings::LanguageEN());

        button("cmdCancel")->click();
        QCOMPARE(storedIn(m_ini), (Stored{2, 1, 1}));
    }

    void storedLanguageOutsideTheFiveChecksNoOption() {
        QSettingsStore(m_ini).writeDword("Language", 7);
        m_dialog = m_window->makeOptionsDialog();
        QCOMPARE(m_dialog->selectedLanguage(), 0);
        for (const char* name : {"Option1", "Option2", "Option3", "Option4", "Option5"})
            QVERIFY(!radio(name)->isChecked());
        expectLanguage(*m_window, *m_dialog, settings::LanguageEN());
        // Apply without a language chosen keeps the stored number.
        box("Check3")->click();
        button("cmdApply")->click();
        QCOMPARE(storedIn(m_ini), (Stored{7, 0, 1}));
    }

    void russianThenEnglishLeavesEveryCaptionEnglish() {
        radio("Option1")->click();
        button("cmdApply")->click();
        expectLanguage(*m_window, *m_dialog, settings::LanguageRU());
        radio("Option2")->click();
        button("cmdApply")->click();
        expectLanguage(*m_window, *m_dialog, settings::LanguageEN());
        // Captions no language sets stay as designed.
        QCOMPARE(m_window->findChild<QAction*>("mnu_ToolsGPFtoBMP")->text(), QStringLiteral("GPF>BMP"));
        QCOMPARE(m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader6")->text(), QStringLiteral("PIToffset"));
    }

    void everyLanguageReachesBothWindows_data() {
        QTest::addColumn<int>("index");
        for (int index = 1; index <= 5; ++index)
            QTest::newRow(settings::languageByIndex(index)->name.data()) << index;
    }
    void everyLanguageReachesBothWindows() {
        QFETCH(int, index);
        radio(QStringLiteral("Option%1").arg(index).toLatin1().constData())->click();
        button("cmdApply")->click();
        expectLanguage(*m_window, *m_dialog, *settings::languageByIndex(index));
        QCOMPARE(storedIn(m_ini).language, std::optional<std::uint32_t>(index));
    }

private:
    QRadioButton* radio(const char* name) { return m_dialog->findChild<QRadioButton*>(name); }
    QCheckBox* box(const char* name) { return m_dialog->findChild<QCheckBox*>(name); }
    QPushButton* button(const char* name) { return m_dialog->findChild<QPushButton*>(name); }

    QString m_ini;
    std::unique_ptr<Form1> m_window;
    std::unique_ptr<OptionsDialog> m_dialog;
};

KORVATEK_TEST_CLASS(OptionsDialogTest);

}  // namespace korvatek::gui::test

#include "options_dialog_test.moc"
