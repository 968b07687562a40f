// File association on a freedesktop desktop: what registering writes, reading it back, and the
// options dialog's two boxes, all in a temporary home.
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QTest>

#include "file_association_store.h"
#include "options_dialog.h"
#include "settings/freedesktop_association.h"
#include "settings/key_file.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

using settings::FreedesktopAssociationStore;

QString readAll(const std::filesystem::path& path) {
    QFile file(QString::fromStdString(path.string()));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

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
    void registeringWritesTypeEntryAndDefault() {
        Desktop desktop;
        int cacheRebuilds = 0;
        desktop.store.onPackagesChanged = [&](const std::filesystem::path&) { ++cacheRebuilds; };
        settings::registerExtension(desktop.store, ".gpf", kProgram);

        const QString package = readAll(desktop.store.packagePath(".gpf"));
        QVERIFY(package.contains(R"(<mime-type type="application/x-gpffile">)"));
        QVERIFY(package.contains(R"(<glob pattern="*.gpf"/>)"));
        QVERIFY(package.contains("<comment>Graphic Patch File</comment>"));
        const std::string entry = readAll(desktop.store.desktopEntryPath()).toStdString();
        QCOMPARE(settings::keyFileValue(entry, "Desktop Entry", "Exec"), std::optional<std::string>(kProgram + " %f"));
        QCOMPARE(settings::keyFileValue(entry, "Desktop Entry", "MimeType"),
                 std::optional<std::string>("application/x-gpffile;"));
        QCOMPARE(settings::keyFileValue(readAll(desktop.store.mimeAppsPath()).toStdString(), "Default Applications",
                                        "application/x-gpffile"),
                 std::optional<std::string>("korvatek.desktop;"));
        QCOMPARE(cacheRebuilds, 1);

        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf"), kProgram + " %f");
        QVERIFY(settings::isAssociated(desktop.store, ".gpf", kProgram));
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf2"), std::string("Unregistered file extension .gpf2"));
        QVERIFY(!settings::isAssociated(desktop.store, ".gpf2", kProgram));
        QVERIFY(!settings::isAssociated(desktop.store, ".gpf", "/usr/bin/korvatek"));
    }

    void secondExtensionSharesTheTypeAndTheEntry() {
        Desktop desktop;
        settings::registerExtension(desktop.store, ".gpf", kProgram);
        const QString entryBefore = readAll(desktop.store.desktopEntryPath());
        settings::registerExtension(desktop.store, ".gpf2", kProgram);
        QCOMPARE(readAll(desktop.store.desktopEntryPath()), entryBefore);
        QVERIFY(readAll(desktop.store.packagePath(".gpf2")).contains(R"(<glob pattern="*.gpf2"/>)"));
        QVERIFY(settings::isAssociated(desktop.store, ".gpf", kProgram));
        QVERIFY(settings::isAssociated(desktop.store, ".gpf2", kProgram));
    }

    void otherDefaultsAndLinesOfMimeappsListStay() {
        Desktop desktop;
        const QString before =
            "# chosen by hand\n[Default Applications]\ntext/plain=editor.desktop;\n\n[Added Associations]\n"
            "image/png=viewer.desktop;\n";
        writeAll(desktop.store.mimeAppsPath(), before);
        settings::registerExtension(desktop.store, ".gpf", kProgram);
        QCOMPARE(readAll(desktop.store.mimeAppsPath()),
                 QStringLiteral("# chosen by hand\n[Default Applications]\ntext/plain=editor.desktop;\n"
                                "application/x-gpffile=korvatek.desktop;\n\n[Added Associations]\n"
                                "image/png=viewer.desktop;\n"));
    }

    void anotherProgramAsTheDefaultReadsAsNotAssociated() {
        Desktop desktop;
        settings::registerExtension(desktop.store, ".gpf", kProgram);
        writeAll(desktop.store.mimeAppsPath(), "[Default Applications]\napplication/x-gpffile=other.desktop;\n");
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf"), std::string("File type is not associated with a program."));
        writeAll(desktop.store.desktopEntryPath().parent_path() / "other.desktop",
                 "[Desktop Entry]\nType=Application\nExec=other %f\n");
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf"), std::string("other %f"));
        QVERIFY(!settings::isAssociated(desktop.store, ".gpf", kProgram));
        // Registering again takes the default back.
        settings::registerExtension(desktop.store, ".gpf", kProgram);
        QVERIFY(settings::isAssociated(desktop.store, ".gpf", kProgram));
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
        settings::registerExtension(desktop.store, ".gpf", path.toStdString());
        QVERIFY(settings::isAssociated(desktop.store, ".gpf", path.toStdString()));
    }

    void commandsOfTheBufferLengthOrMoreNeverMatch() {
        Desktop desktop;
        // "/" + name + " %f": 124 characters fit the 128-character buffer with its terminator.
        const std::string fits = "/" + std::string(120, 'k');
        settings::registerExtension(desktop.store, ".gpf", fits);
        QCOMPARE(desktop.store.openCommandFor(fits).size(), std::size_t(124));
        QVERIFY(settings::isAssociated(desktop.store, ".gpf", fits));
        const std::string tooLong = "/" + std::string(124, 'k');  // 128 characters with " %f"
        settings::registerExtension(desktop.store, ".gpf", tooLong);
        QCOMPARE(desktop.store.GetAssociatedCommand(".gpf").size(), std::size_t(127));
        QVERIFY(!settings::isAssociated(desktop.store, ".gpf", tooLong));
    }

    void keyFileValuesChangeInPlace_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("empty file") << "" << "[G]\nk=v\n";
        QTest::newRow("replaced where it is") << "[G]\na=1\nk=old\nb=2\n" << "[G]\na=1\nk=v\nb=2\n";
        QTest::newRow("added after the group's last line") << "[G]\na=1\n\n[H]\nk=x\n" << "[G]\na=1\nk=v\n\n[H]\nk=x\n";
        QTest::newRow("group added") << "# note\n[H]\nk=x" << "# note\n[H]\nk=x\n\n[G]\nk=v\n";
        QTest::newRow("blanks around the equals sign") << "[G]\nk = old\n" << "[G]\nk=v\n";
        QTest::newRow("carriage returns dropped") << "[G]\r\na=1\r\n" << "[G]\na=1\nk=v\n";
    }
    void keyFileValuesChangeInPlace() {
        QFETCH(QString, before);
        QFETCH(QString, after);
        const std::string changed = settings::setKeyFileValue(before.toStdString(), "G", "k", "v");
        QCOMPARE(QString::fromStdString(changed), after);
        QCOMPARE(settings::keyFileValue(changed, "G", "k"), std::optional<std::string>("v"));
        QCOMPARE(settings::keyFileValue(changed, "H", "a"), std::nullopt);
    }

    void theDialogsBoxesRegisterAndShowTheState() {
        // The window's own store follows XDG_DATA_HOME and XDG_CONFIG_HOME.
        const QString home = freshFolder("xdg");
        qputenv("XDG_DATA_HOME", (home + "/data").toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", (home + "/config").toLocal8Bit());
        auto store = makeAssociationStore();
        auto* freedesktop = dynamic_cast<FreedesktopAssociationStore*>(store.get());
        QVERIFY(freedesktop != nullptr && freedesktop->onPackagesChanged);
        // The MIME cache is rebuilt by a program left running on its own; here it is only counted.
        int cacheRebuilds = 0;
        freedesktop->onPackagesChanged = [&](const std::filesystem::path& folder) {
            QCOMPARE(QString::fromStdString(folder.string()), home + "/data/mime");
            ++cacheRebuilds;
        };
        auto window = makeWindow();
        window->startUp({});
        const std::string program = "/opt/korvatek/korvatek";
        settings::MemorySettingsStore settingsStore;
        {
            OptionsDialog dialog(window->workspace(), settingsStore, *store, program);
            QVERIFY(!box(dialog, "Check1")->isChecked() && !box(dialog, "Check2")->isChecked());
            box(dialog, "Check1")->click();
            button(dialog, "cmdApply")->click();
        }
        QVERIFY(QFile::exists(home + "/data/mime/packages/korvatek-gpf.xml"));
        QVERIFY(QFile::exists(home + "/data/applications/korvatek.desktop"));
        QVERIFY(QFile::exists(home + "/config/mimeapps.list"));
        QVERIFY(!QFile::exists(home + "/data/mime/packages/korvatek-gpf2.xml"));
        QCOMPARE(cacheRebuilds, 1);
        const QString entry = readAll((home + "/data/applications/korvatek.desktop").toStdString());
        {
            OptionsDialog dialog(window->workspace(), settingsStore, *store, program);
            QVERIFY(box(dialog, "Check1")->isChecked() && !box(dialog, "Check2")->isChecked());
            // Clearing the box removes nothing.
            box(dialog, "Check1")->click();
            button(dialog, "cmdApply")->click();
        }
        QVERIFY(QFile::exists(home + "/data/mime/packages/korvatek-gpf.xml"));
        QCOMPARE(readAll((home + "/data/applications/korvatek.desktop").toStdString()), entry);
        OptionsDialog dialog(window->workspace(), settingsStore, *store, program);
        QVERIFY(box(dialog, "Check1")->isChecked());
    }

private:
    static QCheckBox* box(QDialog& dialog, const char* name) { return dialog.findChild<QCheckBox*>(name); }
    static QPushButton* button(QDialog& dialog, const char* name) { return dialog.findChild<QPushButton*>(name); }
};

KORVATEK_TEST_CLASS(FileAssociationTest);

}  // namespace korvatek::gui::test

#include "file_association_test.moc"
