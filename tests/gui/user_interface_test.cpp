// The window's side of the person-facing seam: filters, boxes, questions, input and progress.
#include <QDir>
#include <QFile>
#include <QTest>

#include "edit/patch_files.h"
#include "qt_user_interface.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class UserInterfaceTest : public QObject {
    Q_OBJECT
private slots:
    void filtersTakeQtsForm_data() {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QString>("nameFilters");
        QTest::addColumn<QString>("suffix");
        QTest::newRow("pairs") << "Desc (*.x)|*.x|Desc2|*.y" << "Desc (*.x);;Desc2 (*.y)" << "x";
        QTest::newRow("open any") << "All supported files (*.bin; *.gpf; *.gpf2; *.dat)|*.bin; *.gpf; *.gpf2; *.dat"
                                  << "All supported files (*.bin *.gpf *.gpf2 *.dat)" << "bin";
        QTest::newRow("no blank before the parenthesis")
            << "Graphic Patch File 2(*.gpf2)|*.gpf2|Graphic Patch File (*.gpf)|*.gpf"
            << "Graphic Patch File 2 (*.gpf2);;Graphic Patch File (*.gpf)" << "gpf2";
        QTest::newRow("everything") << "All files|*.*" << "All files (*.*)" << "";
        QTest::newRow("no pattern") << "" << "" << "";
    }
    void filtersTakeQtsForm() {
        QFETCH(QString, filter);
        QFETCH(QString, nameFilters);
        QFETCH(QString, suffix);
        QCOMPARE(QtUserInterface::qtNameFilters(filter.toStdString()), nameFilters);
        QCOMPARE(QtUserInterface::defaultSuffix(filter.toStdString()), suffix);
    }

    void boxesCarryTheGivenTitleOrTheProgramNameAndAnswer() {
        QWidget parent;
        QtUserInterface ui(&parent);
        ModalAnswerer answers;
        ui.showMessage("Width: 176\rHeight: 220", "");
        ui.showMessage("Successfully completed", "Make");
        QVERIFY(ui.askOkCancel("Save alphachannel for image?"));
        answers.filesToChoose = {"12"};
        QCOMPARE(ui.inputText("Input size from 6 to 64"), std::optional<std::string>("12"));
        answers.okAnswer = false;
        QVERIFY(!ui.askOkCancel("Save alphachannel for image?"));
        QCOMPARE(ui.inputText("Input size from 6 to 64"), std::nullopt);
        QCOMPARE(answers.titles, (QStringList{"Korvatek", "Make"} + QStringList(4, "Korvatek")));
        QCOMPARE(answers.texts.first(), QStringLiteral("Width: 176\nHeight: 220"));
    }

    void fileDialogsUseTheTitleAndFiltersAndRememberTheFolder() {
        QWidget parent;
        QtUserInterface ui(&parent);
        ModalAnswerer answers;
        const QString folder = freshFolder("dialogs");
        answers.filesToChoose = {folder + "/0005"};
        const auto chosen = ui.chooseSaveFile(
            {"Choose file GPF:", "GPF", "Graphic Patch File 2(*.gpf2)|*.gpf2", "0005.gpf2"});
        QCOMPARE(answers.dialogTitles.value(0), QStringLiteral("Choose file GPF:"));
        QCOMPARE(answers.dialogFilters.value(0), QStringLiteral("Graphic Patch File 2 (*.gpf2)"));
        // A name typed without its extension gets the filter's; the path comes in the system's
        // own form (backslashes on Windows), as the core writes it into messages.
        QCOMPARE(chosen, std::optional<std::string>(QDir::toNativeSeparators(folder + "/0005.gpf2").toStdString()));
        QCOMPARE(ui.lastFolder(), folder);
        QCOMPARE(ui.chooseOpenFile({"Choose file fullflash:", "fullflash", "All files|*.*", ""}), std::nullopt);
        const QString patch = folder + "/a.vkp";
        QFile(patch).open(QIODevice::WriteOnly);
        answers.filesToChoose = {patch};
        QCOMPARE(ui.chooseOpenFiles({"Choose file VKP:", "VKP", "V_Klay Patch File(*.vkp)|*.vkp", ""}),
                 std::optional(std::vector<std::string>{QDir::toNativeSeparators(patch).toStdString()}));
    }

    // The status table writes only where it offered that; it speaks the window's language.
    void theStatusTableWritesOnlyWhenOffered() {
        QWidget parent;
        QtUserInterface ui(&parent);
        settings::MessageTable messages;
        messages.apply(5);
        ui.setMessages(messages);
        ModalAnswerer answers;
        const edit::StatusReport report;
        QVERIFY(ui.showPatchStatus(report, true));
        QVERIFY(!ui.showPatchStatus(report, false));
        answers.okAnswer = false;
        QVERIFY(!ui.showPatchStatus(report, true));
        QCOMPARE(answers.titles, QStringList(3, QString::fromStdString(messages.text(settings::MessageKey::MsgStatusTitle))));
    }
};

KORVATEK_TEST_CLASS(UserInterfaceTest);

}  // namespace korvatek::gui::test

#include "user_interface_test.moc"
