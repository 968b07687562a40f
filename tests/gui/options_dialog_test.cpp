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
#include "app/message_table.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

using Stored = std::array<std::optional<std::uint32_t>, 3>;  // Language, MSGsucces, MSGreplace

Stored storedIn(const QString& ini) {
    QSettingsStore store(ini);
    return {store.readDword("Language"), store.readDword("MSGsucces"), store.readDword("MSGreplace")};
}

Stored values(std::uint32_t language, std::uint32_t success, std::uint32_t replace) {
    return {language, success, replace};
}

// Every caption a person reads in both windows, by control, and every message.
QStringList captionsOf(Form1& window, QDialog& dialog) {
    QStringList captions;
    for (QAction* action : window.findChildren<QAction*>())
        captions << action->objectName() + "=" + action->text();
    for (QMenu* menu : window.findChildren<QMenu*>()) captions << menu->objectName() + "=" + menu->title();
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        captions << button->objectName() + "=" + button->text();
    auto* tabs = window.findChild<QTabBar*>("TabStrip1");
    auto* pages = dialog.findChild<QTabWidget*>("tbsOptions");
    captions << tabs->tabText(0) << tabs->tabText(1) << pages->tabText(0) << pages->tabText(1)
             << dialog.windowTitle() << window.findChild<QComboBox*>("Ftype")->placeholderText();
    for (std::size_t i = 0; i < settings::kMessageCount; ++i)
        captions << QString::fromStdString(window.workspace().messages.text(static_cast<settings::MessageKey>(i)));
    return captions;
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

    void startShowsTheStoredSettingsAndApplyWaitsForAChange() {
        QVERIFY(radio("Option2")->isChecked() && box("Check3")->isChecked() && box("Check4")->isChecked());
        QVERIFY(!box("Check1")->isChecked() && !box("Check2")->isChecked());
        QVERIFY(!button("cmdApply")->isEnabled());
        box("Check3")->click();
        QVERIFY(button("cmdApply")->isEnabled());
        radio("Option5")->click();
        button("cmdApply")->click();
        QVERIFY(!button("cmdApply")->isEnabled());
        QCOMPARE(storedIn(m_ini), values(5, 0, 1));
        QCOMPARE(m_window->workspace().LanguageIndex, 5);
        QVERIFY(!m_window->workspace().ShowSuccessMessage);
        QCOMPARE(m_window->findChild<QMenu*>("mnu_File")->title(), QString::fromUtf8(settings::LanguagePL().captions[0]));
    }

    void cancelAppliesNothingAndOkApplies() {
        radio("Option3")->click();
        box("Check4")->click();
        button("cmdCancel")->click();
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        QCOMPARE(storedIn(m_ini), values(2, 1, 1));
        QCOMPARE(m_window->workspace().LanguageIndex, 2);

        m_dialog = m_window->makeOptionsDialog();
        box("Check4")->click();
        button("cmdOK")->click();
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(storedIn(m_ini), values(2, 1, 0));
        QVERIFY(!m_window->workspace().ShowReplaceMessage);
    }

    void defaultsRestoreAndStayAfterCancel() {
        const QStringList english = captionsOf(*m_window, *m_dialog);
        radio("Option1")->click();
        box("Check3")->click();
        box("Check4")->click();
        button("cmdApply")->click();
        QCOMPARE(storedIn(m_ini), values(1, 0, 0));

        button("cmdDefaults")->click();
        QCOMPARE(storedIn(m_ini), values(2, 1, 1));
        QVERIFY(radio("Option2")->isChecked() && box("Check3")->isChecked() && box("Check4")->isChecked());
        QVERIFY(!button("cmdApply")->isEnabled());
        QCOMPARE(captionsOf(*m_window, *m_dialog), english);
        button("cmdCancel")->click();
        QCOMPARE(storedIn(m_ini), values(2, 1, 1));
    }

    void storedLanguageOutsideTheFiveChecksNoOption() {
        const QStringList english = captionsOf(*m_window, *m_dialog);
        QSettingsStore(m_ini).writeDword("Language", 7);
        m_dialog = m_window->makeOptionsDialog();
        QCOMPARE(m_dialog->selectedLanguage(), 0);
        QCOMPARE(captionsOf(*m_window, *m_dialog), english);
        // Apply without a language chosen keeps the stored number.
        box("Check3")->click();
        button("cmdApply")->click();
        QCOMPARE(storedIn(m_ini), values(7, 0, 1));
    }

    void russianThenEnglishLeavesEveryCaptionEnglish() {
        const QStringList english = captionsOf(*m_window, *m_dialog);
        QVERIFY(english.contains("mnu_File=File") && english.contains("mnuPopup_SaveAllBMP=Save all (BMP)") &&
                english.contains("Check4=Show replacing to 1x1") && english.contains("Fonts"));
        radio("Option1")->click();
        button("cmdApply")->click();
        const QStringList russian = captionsOf(*m_window, *m_dialog);
        QVERIFY(russian.contains("mnu_File=" + QString::fromUtf8(settings::LanguageRU().captions[0])));
        int translated = 0;
        for (qsizetype i = 0; i < english.size(); ++i) translated += english[i] != russian[i];
        QVERIFY2(translated > 80, "the Russian routine did not reach both windows and the messages");
        // Captions no language sets stay as designed.
        QVERIFY(russian.contains("mnu_ToolsGPFtoBMP=GPF>BMP") && russian.contains("mnuPopup_CopyColumnHeader6=PIToffset"));

        radio("Option2")->click();
        button("cmdApply")->click();
        QCOMPARE(captionsOf(*m_window, *m_dialog), english);
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
