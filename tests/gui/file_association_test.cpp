// File association: on a freedesktop desktop what registering writes, reading it back, and the
// options dialog's two boxes, all in a temporary home; on Windows the boxes against the registry.
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QUuid>

#include "file_association_store.h"
#include "options_dialog.h"
#include "desktop/freedesktop_association.h"
#include "desktop/key_file.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

using settings::FreedesktopAssociationStore;
using settings::isAssociated;
using settings::registerExtension;

QString readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
QString readAll(const std::filesystem::path& path) { return readAll(QString::fromStdString(path.string())); }

void writeAll(const std::filesystem::path& path, const QString& text) {
    QDir().mkpath(QString::fromStdString(path.parent_path().string()));
    QFile file(QString::fromStdString(path.string()));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text.toUtf8());
}

struct Desktop {
    QString home = freshFolder("desktop");
    FreedesktopAssociationStore store{(home + "/data").toStdString(), (home + "/config").toStdString()};
};

const std::string kProgram = "/opt/korvatek/bin/korvatek";

}  // namespace

class FileAssociationTest : public QObject {
    Q_OBJECT
private slots:
    void registeringWritesTypeEntryAndDefaultAndReadsBack() {
        Desktop desktop;
        int cacheRebuilds = 0;
        desktop.store.onPackagesChanged = [&](const std::filesystem::path&) { ++cacheRebuilds; };
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf"), std::string("Unregistered file extension .gpf"));
        registerExtension(desktop.store, ".gpf", kProgram);

        const QString package = readAll(desktop.store.packagePath(".gpf"));
        QVERIFY(package.contains(R"(<mime-type type="application/x-gpffile">)"));
        QVERIFY(package.contains(R"(<glob pattern="*.gpf"/>)") && package.contains("<comment>Graphic Patch File<"));
        const std::string entry = readAll(desktop.store.desktopEntryPath()).toStdString();
        QCOMPARE(settings::keyFileValue(entry, "Desktop Entry", "Exec"), std::optional(kProgram + " %f"));
        QCOMPARE(settings::keyFileValue(entry, "Desktop Entry", "MimeType"),
                 std::optional<std::string>("application/x-gpffile;"));
        QCOMPARE(settings::keyFileValue(readAll(desktop.store.mimeAppsPath()).toStdString(), "Default Applications",
                                        "application/x-gpffile"),
                 std::optional<std::string>("korvatek.desktop;"));
        QCOMPARE(cacheRebuilds, 1);
        QVERIFY(isAssociated(desktop.store, ".gpf", kProgram));
        QVERIFY(!isAssociated(desktop.store, ".gpf", "/usr/bin/korvatek"));
        QVERIFY(!isAssociated(desktop.store, ".gpf2", kProgram));

        // The second extension shares the type and the entry.
        registerExtension(desktop.store, ".gpf2", kProgram);
        QCOMPARE(readAll(desktop.store.desktopEntryPath()).toStdString(), entry);
        QVERIFY(isAssociated(desktop.store, ".gpf", kProgram) && isAssociated(desktop.store, ".gpf2", kProgram));
    }

    void otherLinesOfMimeappsListStay() {
        Desktop desktop;
        writeAll(desktop.store.mimeAppsPath(), "# by hand\n[Default Applications]\ntext/plain=editor.desktop;\n\n"
                                               "[Added Associations]\nimage/png=viewer.desktop;\n");
        registerExtension(desktop.store, ".gpf", kProgram);
        QCOMPARE(readAll(desktop.store.mimeAppsPath()),
                 QStringLiteral("# by hand\n[Default Applications]\ntext/plain=editor.desktop;\n"
                                "application/x-gpffile=korvatek.desktop;\n\n[Added Associations]\n"
                                "image/png=viewer.desktop;\n"));
        // A group that is not there yet is added at the end.
        QCOMPARE(settings::setKeyFileValue("[H]\nk=x", "G", "k", "v"), std::string("[H]\nk=x\n\n[G]\nk=v\n"));
    }

    void anotherProgramAsTheDefaultReadsAsNotAssociated() {
        Desktop desktop;
        registerExtension(desktop.store, ".gpf", kProgram);
        writeAll(desktop.store.mimeAppsPath(), "[Default Applications]\napplication/x-gpffile=other.desktop;\n");
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf"), std::string("File type is not associated with a program."));
        writeAll(desktop.store.desktopEntryPath().parent_path() / "other.desktop", "[Desktop Entry]\nExec=other %f\n");
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf"), std::string("other %f"));
        registerExtension(desktop.store, ".gpf", kProgram);
        QVERIFY(isAssociated(desktop.store, ".gpf", kProgram));
    }

    void programPathsTakeTheExecLineForm_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("command");
        QTest::newRow("plain") << "/usr/bin/korvatek" << "/usr/bin/korvatek %f";
        QTest::newRow("blank") << "/opt/My Tools/korvatek" << "\"/opt/My Tools/korvatek\" %f";
        QTest::newRow("dollar and percent") << "/opt/$x%/korvatek" << "\"/opt/\\\\$x%%/korvatek\" %f";
        QTest::newRow("backslash") << "/opt/a\\b/korvatek" << "\"/opt/a\\\\\\\\b/korvatek\" %f";
    }
    void programPathsTakeTheExecLineForm() {
        QFETCH(QString, path);
        QFETCH(QString, command);
        Desktop desktop;
        QCOMPARE(QString::fromStdString(desktop.store.openCommandFor(path.toStdString())), command);
        registerExtension(desktop.store, ".gpf", path.toStdString());
        QVERIFY(isAssociated(desktop.store, ".gpf", path.toStdString()));
    }

    void commandsOfTheBufferLengthOrMoreNeverMatch() {
        Desktop desktop;
        const std::string fits = "/" + std::string(120, 'k');  // 124 characters with " %f"
        registerExtension(desktop.store, ".gpf", fits);
        QVERIFY(isAssociated(desktop.store, ".gpf", fits));
        const std::string tooLong = "/" + std::string(124, 'k');  // 128, no room for the terminator
        registerExtension(desktop.store, ".gpf", tooLong);
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf").size(), std::size_t(127));
        QVERIFY(!isAssociated(desktop.store, ".gpf", tooLong));
    }

    void theDialogsBoxesRegisterAndShowTheState() {
#ifdef Q_OS_WIN
        QSKIP("the freedesktop store is the window's own only on Linux and similar desktops; on Windows "
              "theDialogsBoxesWriteTheRegistryAndReadItBack checks the registry");
#endif
        // The window's own store follows XDG_DATA_HOME and XDG_CONFIG_HOME.
        const QString home = freshFolder("xdg");
        qputenv("XDG_DATA_HOME", (home + "/data").toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", (home + "/config").toLocal8Bit());
        auto store = makeAssociationStore();
        auto* freedesktop = dynamic_cast<FreedesktopAssociationStore*>(store.get());
        QVERIFY(freedesktop != nullptr && freedesktop->onPackagesChanged);
        // The MIME cache is rebuilt by a program left running on its own; here it is only counted.
        int cacheRebuilds = 0;
        freedesktop->onPackagesChanged = [&](const std::filesystem::path&) { ++cacheRebuilds; };
        auto window = makeWindow();
        settings::MemorySettingsStore settingsStore;
        const auto dialog = [&] {
            return std::make_unique<OptionsDialog>(window->workspace(), settingsStore, *store, "/opt/korvatek");
        };
        auto first = dialog();
        QVERIFY(!box(*first, "Check1")->isChecked() && !box(*first, "Check2")->isChecked());
        box(*first, "Check1")->click();
        first->findChild<QPushButton*>("cmdApply")->click();
        QVERIFY(QFile::exists(home + "/data/mime/packages/korvatek-gpf.xml"));
        QVERIFY(!QFile::exists(home + "/data/mime/packages/korvatek-gpf2.xml"));
        QVERIFY(readAll(home + "/config/mimeapps.list").contains("application/x-gpffile=korvatek.desktop;"));
        QCOMPARE(cacheRebuilds, 1);

        const QString entry = readAll(home + "/data/applications/korvatek.desktop");
        auto second = dialog();
        QVERIFY(box(*second, "Check1")->isChecked() && !box(*second, "Check2")->isChecked());
        // Clearing the box removes nothing.
        box(*second, "Check1")->click();
        second->findChild<QPushButton*>("cmdApply")->click();
        QCOMPARE(readAll(home + "/data/applications/korvatek.desktop"), entry);
        QVERIFY(box(*dialog(), "Check1")->isChecked());
    }

#ifdef Q_OS_WIN
    void theDialogsBoxesWriteTheRegistryAndReadItBack() {
        // A key of the test's own stands for HKEY_CURRENT_USER\Software\Classes.
        const QString scratch = QStringLiteral("Korvatek tests ") + QUuid::createUuid().toString(QUuid::Id128).left(8);
        const QString key = QStringLiteral("HKEY_CURRENT_USER\\Software\\") + scratch + QStringLiteral("\\Classes");
        const std::string program = "C:\\Program Files\\Korvatek\\korvatek.exe";
        auto store = makeRegistryAssociationStore(program, key.toStdString());
        auto window = makeWindow();
        settings::MemorySettingsStore settingsStore;
        const auto dialog = [&] {
            return std::make_unique<OptionsDialog>(window->workspace(), settingsStore, *store, program);
        };
        auto first = dialog();
        QVERIFY(!box(*first, "Check1")->isChecked() && !box(*first, "Check2")->isChecked());
        box(*first, "Check1")->click();
        first->findChild<QPushButton*>("cmdApply")->click();

        // What the shell reads, and what the installer writes for a person who never opens Options.
        QSettings classes(key, QSettings::NativeFormat);
        QCOMPARE(classes.value(".gpf/Default").toString(), QStringLiteral("gpffile"));
        QVERIFY(classes.contains(".gpf/ShellNew/NullFile"));
        QVERIFY(!classes.contains(".gpf2/Default"));
        QCOMPARE(classes.value("gpffile/Default").toString(), QStringLiteral("Graphic Patch File"));
        QCOMPARE(classes.value("gpffile/DefaultIcon/Default").toString(),
                 QStringLiteral("C:\\Program Files\\Korvatek\\korvatek.exe,0"));
        QCOMPARE(classes.value("gpffile/shell/open/command/Default").toString(),
                 QStringLiteral("C:\\Program Files\\Korvatek\\korvatek.exe %1"));

        QVERIFY(box(*dialog(), "Check1")->isChecked() && !box(*dialog(), "Check2")->isChecked());
        // The boxes show what the registry holds: another program taking the type over clears them.
        classes.setValue("gpffile/shell/open/command/Default", QStringLiteral("C:\\Other\\viewer.exe %1"));
        classes.sync();
        QVERIFY(!box(*dialog(), "Check1")->isChecked());

        QSettings software(QStringLiteral("HKEY_CURRENT_USER\\Software"), QSettings::NativeFormat);
        software.remove(scratch);
        software.sync();
        QVERIFY(!software.childGroups().contains(scratch));
    }
#endif

private:
    static QCheckBox* box(QDialog& dialog, const char* name) { return dialog.findChild<QCheckBox*>(name); }
};

KORVATEK_TEST_CLASS(FileAssociationTest);

}  // namespace korvatek::gui::test

#include "file_association_test.moc"
