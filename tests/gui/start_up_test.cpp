// Start-up: the command line's file, then the stored settings and the language.
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QTabBar>
#include <QTest>
#include <QTreeView>

#include "picture_list_model.h"
#include "preview_widget.h"
#include "qsettings_store.h"
#include "app/message_table.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

// Another name for the same file. On Windows QFile::link makes a shell shortcut (a small file of
// its own, which no fullflash reader follows), so the file is copied there instead.
bool anotherName(const QString& file, const QString& name) {
#ifdef Q_OS_WIN
    return QFile::copy(file, name);
#else
    return QFile::link(file, name);
#endif
}

}  // namespace

class StartUpTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { demoFlashPath(); }

    void withoutArgumentsTheWindowStartsEmptyOnPictures() {
        const QString ini = freshFolder("settings") + "/Korvatek.ini";
        auto window = makeWindow(ini);
        ModalAnswerer answers;
        window->startUp({});
        QCOMPARE(window->findChild<QTreeView*>("ListView1")->model()->rowCount(), 0);
        QCOMPARE(window->findChild<QTreeView*>("ListView2")->model()->rowCount(), 0);
        QCOMPARE(window->findChild<QTabBar*>("TabStrip1")->currentIndex(), 0);
        QVERIFY(!window->findChild<QTreeView*>("ListView1")->isHidden());
        QVERIFY(window->findChild<QTreeView*>("ListView2")->isHidden());
        QVERIFY(window->findChild<QComboBox*>("Ftype")->isHidden());
        QVERIFY(answers.texts.isEmpty());
        // A first start stores the defaults.
        QSettingsStore stored(ini);
        QCOMPARE(stored.readDword("Language"), std::optional<std::uint32_t>(2));
        QCOMPARE(stored.readDword("MSGsucces"), std::optional<std::uint32_t>(1));
        QCOMPARE(stored.readDword("MSGreplace"), std::optional<std::uint32_t>(1));
    }

    void commandLinePathOpensAFullflash_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("rows");
        const QString flash = demoFlashPath();
        const QString folder = freshFolder("command line");
        QVERIFY(anotherName(flash, folder + "/DEMO.BIN"));
        QVERIFY(anotherName(flash, folder + "/my flash.bin"));
        QTest::newRow("unquoted") << QStringList{flash} << 1701;
        QTest::newRow("quoted") << QStringList{'"' + flash + '"'} << 1701;
        QTest::newRow("blank in the path, quoted") << QStringList{'"' + folder + "/my flash.bin\""} << 1701;
        QTest::newRow("blank in the path, split into two arguments")
            << QStringList{folder + "/my", "flash.bin"} << 1701;
        QTest::newRow("upper-case BIN") << QStringList{folder + "/DEMO.BIN"} << 0;
        QTest::newRow("upper-case BIN, quoted") << QStringList{'"' + folder + "/DEMO.BIN\""} << 0;
        QTest::newRow("another kind of file") << QStringList{folder + "/notes.txt"} << 0;
    }
    void commandLinePathOpensAFullflash() {
        QFETCH(QStringList, arguments);
        QFETCH(int, rows);
        auto window = makeWindow();
        ModalAnswerer answers;
        window->startUp(arguments);
        QCOMPARE(answers.texts, QStringList());
        QCOMPARE(window->pictureModel().rowCount(), rows);
        QCOMPARE(window->findChild<QComboBox*>("Ftype")->count(), rows == 0 ? 0 : 3);
        if (rows != 0) {
            QCOMPARE(window->findChild<QComboBox*>("Ftype")->itemText(0), QStringLiteral("Font 0"));
            QCOMPARE(window->findChild<QProgressBar*>("ProgressBar1")->value(), 100);
        }
    }

    void quotedGpf2PathLoadsThatPicture() {
        const QString gpf2 = demoPictureGpf2(3);
        QVERIFY(gpf2.contains(' '));
        auto window = makeWindow();
        ModalAnswerer answers;
        window->startUp({'"' + gpf2 + '"'});
        QCOMPARE(answers.texts, QStringList());
        const app::Workspace& ws = window->workspace();
        QVERIFY(ws.picture.width > 0 && ws.picture.height > 0);
        QCOMPARE(window->findChild<PreviewWidget*>("Picture1")->image().size(),
                 QSize(ws.picture.width, ws.picture.height));
        QVERIFY(window->findChild<QLabel*>("PICinfo")->text().startsWith(
            QStringLiteral("Width: %1\nHeight: %2\n").arg(ws.picture.width).arg(ws.picture.height)));
        QCOMPARE(window->pictureModel().rowCount(), 0);
    }

    void storedLanguageIsAppliedAfterTheOpen() {
        const QString ini = freshFolder("settings") + "/Korvatek.ini";
        {
            QSettingsStore stored(ini);
            stored.writeDword("Language", 1);
            stored.writeDword("MSGsucces", 0);
            stored.writeDword("MSGreplace", 1);
        }
        auto window = makeWindow(ini);
        window->startUp({demoFlashPath()});
        QCOMPARE(window->workspace().LanguageIndex, 1);
        QVERIFY(!window->workspace().ShowSuccessMessage);
        QCOMPARE(window->findChild<QTabBar*>("TabStrip1")->tabText(0),
                 QString::fromUtf8(settings::LanguageRU().captions[static_cast<int>(settings::CaptionKey::TabPictures)]));
    }
};

KORVATEK_TEST_CLASS(StartUpTest);

}  // namespace korvatek::gui::test

#include "start_up_test.moc"
