// The main window with the demonstration fullflash open: controls, tabs, popups, the list
// events that show a picture, copying cells, saving through the dialogs, and the progress.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QTabBar>
#include <QTest>
#include <QTreeView>

#include "picture_list_model.h"
#include "preview_widget.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

// Right button pressed and released over a row (or the empty area), then the context menu.
void rightClick(QTreeView* list, QPoint at) {
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, list->viewport()->mapToGlobal(at));
    QApplication::sendEvent(list->viewport(), &event);
}

QPoint rowCentre(QTreeView* list, int row) {
    return list->visualRect(list->model()->index(row, 1)).center();
}

}  // namespace

class WindowTest : public QObject {
    Q_OBJECT
private slots:
    void init() {
        m_window = makeWindow();
        m_window->setPopupPresenter([this](QMenu& menu, const QPoint&) { m_popups << menu.objectName(); });
        m_window->resize(1080, 740);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->startUp({demoFlashPath()});
        m_popups.clear();
        m_list = m_window->findChild<QTreeView*>("ListView1");
    }
    void cleanup() { m_window.reset(); }

    void controlsCarryTheirNames() {
        for (const char* name : {"TabStrip1", "ListView1", "ListView2", "Ftype", "Picture1", "PICinfo", "ProgressBar1"})
            QVERIFY2(m_window->findChild<QWidget*>(name) != nullptr, name);
        for (const char* name : {"mnu_File", "mnu_Tools", "mnu_ToolsBMPtoGPF", "mnu_ToolsPNGtoGPF", "mnuPopup",
                                 "mnuPopup_LoadBMP", "mnuPopup_LoadBMPs", "mnuPopup_CopyColumnHeader", "mnuPopup2",
                                 "mnuPopup2_CopyColumnHeader"})
            QVERIFY2(m_window->findChild<QMenu*>(name) != nullptr, name);
        for (const char* name :
             {"mnu_FileOpen", "mnu_FileExit", "mnu_ToolsMake", "mnu_ToolsConvertLumbrapatch", "mnu_ToolsGPFakaGPF2",
              "mnu_ToolsGPFtoBMP", "mnu_ToolsBMPtoGPF_1bit", "mnu_ToolsBMPtoGPF_24bit", "mnu_ToolsPNGtoGPF_8bit",
              "mnu_ToolsGPFakaDAT", "mnu_Options", "mnu_About", "mnuPopup_LoadGPF", "mnuPopup_LoadGPFfolder",
              "mnuPopup_LoadBMP_16bit", "mnuPopup_LoadBMPs_Origbit", "mnuPopup_SaveGPF", "mnuPopup_SaveAllGPF",
              "mnuPopup_SaveBMP", "mnuPopup_SaveAllBMP", "mnuPopup_SavePatch", "mnuPopup_CopyColumnHeader6",
              "mnuPopup_CopyColumnHeader7", "mnuPopup_Bar0", "mnuPopup_Bar1", "mnuPopup_Bar2", "mnuPopup2_LoadBMP",
              "mnuPopup2_LoadBMPfolder", "mnuPopup2_SaveBMP", "mnuPopup2_SaveAllBMP", "mnuPopup2_MakeF",
              "mnuPopup2_ChangeFSize", "mnuPopup2_SavePatch", "mnuPopup2_CopyColumnHeader7",
              "mnuPopup2_CopyColumnHeader8", "mnuPopup2_Bar0", "mnuPopup2_Bar1"})
            QVERIFY2(m_window->findChild<QAction*>(name) != nullptr, name);
    }

    void commandsStillToComeAreDisabled() {
        for (const char* name : {"mnu_ToolsMake", "mnu_ToolsConvertLumbrapatch", "mnu_ToolsGPFakaGPF2",
                                 "mnu_ToolsGPFakaDAT", "mnu_ToolsBMPtoGPF_8bit", "mnuPopup_LoadGPF",
                                 "mnuPopup_LoadBMPs_Origbit", "mnuPopup_SavePatch", "mnuPopup2_SaveBMP",
                                 "mnuPopup2_ChangeFSize", "mnuPopup2_SavePatch"})
            QVERIFY2(!m_window->findChild<QAction*>(name)->isEnabled(), name);
        QVERIFY(!m_window->findChild<QMenu*>("mnu_ToolsPNGtoGPF")->menuAction()->isEnabled());
        for (const char* name : {"mnu_FileOpen", "mnu_FileExit", "mnu_ToolsGPFtoBMP", "mnu_Options", "mnu_About",
                                 "mnuPopup_SaveGPF", "mnuPopup_SaveAllGPF", "mnuPopup_SaveBMP", "mnuPopup_SaveAllBMP",
                                 "mnuPopup_CopyColumnHeader6", "mnuPopup_CopyColumnHeader7"})
            QVERIFY2(m_window->findChild<QAction*>(name)->isEnabled(), name);
    }

    void tabsShowTheirList() {
        auto* tabs = m_window->findChild<QTabBar*>("TabStrip1");
        auto* glyphs = m_window->findChild<QTreeView*>("ListView2");
        auto* fonts = m_window->findChild<QComboBox*>("Ftype");
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
        QCOMPARE(m_window->workspace().TabStrip1, 2);
        QVERIFY(m_list->isHidden() && !glyphs->isHidden() && !fonts->isHidden());
        QCOMPARE(fonts->count(), 3);
        QCOMPARE(fonts->currentIndex(), -1);  // "Font" until one is chosen
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(0).center());
        QCOMPARE(m_window->workspace().TabStrip1, 1);
        QVERIFY(!m_list->isHidden() && glyphs->isHidden() && fonts->isHidden());
    }

    void popupOnlyOnARightClickOverAListWithRows() {
        auto empty = makeWindow();
        QStringList shown;
        empty->setPopupPresenter([&shown](QMenu& menu, const QPoint&) { shown << menu.objectName(); });
        empty->show();
        empty->startUp({});
        rightClick(empty->findChild<QTreeView*>("ListView1"), {40, 40});
        QCOMPARE(shown, QStringList());

        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 2));
        QCOMPARE(m_popups, QStringList());
        rightClick(m_list, rowCentre(m_list, 4));
        QCOMPARE(m_popups, QStringList{"mnuPopup"});
        // The right button selects the row it is over, so the popup acts on that row.
        QCOMPARE(m_window->workspace().ListView1Selected, 4);
    }

    void selectingARowShowsThePictureAndItsInformation() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 3));
        const app::Workspace& ws = m_window->workspace();
        QCOMPARE(ws.ListView1Selected, 3);
        QCOMPARE(ws.ShownPicture, std::optional<int>(3));
        const QString width = m_window->pictureModel().cellText(3, 3);
        const QString height = m_window->pictureModel().cellText(3, 4);
        const QImage shown = m_window->findChild<PreviewWidget*>("Picture1")->image();
        QCOMPARE(shown.size(), QSize(width.toInt(), height.toInt()));
        for (int y = 0; y < shown.height(); y += 7)
            for (int x = 0; x < shown.width(); x += 5) {
                const codec::Cell& cell = ws.canvas.at(x, y);
                QCOMPARE(shown.pixel(x, y), qRgb(cell[2], cell[1], cell[0]));
            }
        const QString info = m_window->findChild<QLabel*>("PICinfo")->text();
        QVERIFY2(info.startsWith("Width: " + width + "\nHeight: " + height + "\nBits:"), qPrintable(info));
        QVERIFY(info.contains("\nLenght: 0x"));
    }

    void keyboardMovesTheSelectionAndThePreview() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 0));
        m_list->setFocus();
        QTest::keyClick(m_list, Qt::Key_Down);
        QTest::keyClick(m_list, Qt::Key_Down);
        QCOMPARE(m_window->workspace().ShownPicture, std::optional<int>(2));
        QCOMPARE(m_window->findChild<PreviewWidget*>("Picture1")->image().width(),
                 m_window->pictureModel().cellText(2, 3).toInt());
        QTest::keyClick(m_list, Qt::Key_End);
        QCOMPARE(m_window->workspace().ShownPicture, std::optional<int>(1700));
    }

    void transparentKeyIsShownInItsColour() {
        const app::Workspace& ws = m_window->workspace();
        auto* preview = m_window->findChild<PreviewWidget*>("Picture1");
        for (int row = 0; row < 400; ++row) {
            m_list->setCurrentIndex(m_window->pictureModel().index(row, 0));
            for (int y = 0; y < ws.preview.height; ++y)
                for (int x = 0; x < ws.preview.width; ++x)
                    if (ws.canvas.at(x, y) == codec::TransparentPixel) {
                        QCOMPARE(preview->image().pixel(x, y), qRgb(169, 171, 169));
                        return;
                    }
        }
        QFAIL("no picture with a transparent key among the first 400");
    }

    void copyPutsTheExactCellOnTheClipboard() {
        QCOMPARE(m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader6")->text(), QStringLiteral("PIToffset"));
        QCOMPARE(m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader7")->text(), QStringLiteral("PICoffset"));
        QCOMPARE(m_window->findChild<QAction*>("mnuPopup2_CopyColumnHeader7")->text(), QStringLiteral("0ffset"));
        QCOMPARE(m_window->findChild<QAction*>("mnuPopup2_CopyColumnHeader8")->text(), QStringLiteral("bM0ffset"));

        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 0));
        QGuiApplication::clipboard()->setText("something else");
        m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader6")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1B01958"));
        m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader7")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), m_window->pictureModel().cellText(0, 7));
        QCOMPARE(QGuiApplication::clipboard()->text().size(), 7);
    }

    void saveAsGpfAsksForTheFileAndReportsSuccess() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 1));
        const QString target = freshFolder("save") + "/0001.gpf2";
        ModalAnswerer answers;
        answers.filesToChoose = {target};
        m_window->findChild<QAction*>("mnuPopup_SaveGPF")->trigger();
        QCOMPARE(answers.dialogTitles, QStringList{"Choose file GPF:"});
        QCOMPARE(answers.dialogFilters, QStringList{"Graphic Patch File 2 (*.gpf2)"});
        QVERIFY(QFile::exists(target));
        QCOMPARE(answers.texts, QStringList{"Successfully completed"});
        QCOMPARE(answers.titles, QStringList{"Korvatek"});
    }

    void batchMovesTheProgressBarAndKeepsTheWindowPainted() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 0));
        auto* bar = m_window->findChild<QProgressBar*>("ProgressBar1");
        bar->setValue(0);
        QList<int> valuesPainted;
        PaintCounter counter(bar, valuesPainted);
        const QString folder = freshFolder("all");
        ModalAnswerer answers;
        answers.filesToChoose = {folder};
        m_window->findChild<QAction*>("mnuPopup_SaveAllGPF")->trigger();
        QVERIFY(QFile::exists(folder + "/0000.gpf2") && QFile::exists(folder + "/1700.gpf2"));
        QVERIFY(!QFile::exists(folder + "/0211.gpf2"));  // the all-zero record has no data to save
        QCOMPARE(bar->value(), 100);
        QVERIFY2(valuesPainted.size() >= 3, "the progress bar was not painted during the walk");
        QVERIFY(valuesPainted.first() < 100);
        // The batch leaves its last row selected and shown.
        QCOMPARE(m_list->currentIndex().row(), 1700);
        QCOMPARE(answers.texts.last(), QStringLiteral("Successfully completed"));
    }

    void aboutShowsTheCreditLines() {
        const app::Workspace& ws = m_window->workspace();
        const QStringList lines = m_window->aboutText().split('\n');
        QCOMPARE(lines.size(), 6);  // no translator line in English
        QCOMPARE(lines[2], QStringLiteral("Special thanks to:"));
        QCOMPARE(lines[4], QStringLiteral("all testers & researchers"));
        QCOMPARE(lines[5], QString::fromStdString(ws.msg(settings::MessageKey::MsgCredits)));
        ModalAnswerer answers;
        m_window->findChild<QAction*>("mnu_About")->trigger();
        QCOMPARE(answers.texts, QStringList{m_window->aboutText()});
    }

private:
    // Counts the progress bar's paints while a command runs, with the value each one showed.
    class PaintCounter : public QObject {
    public:
        PaintCounter(QProgressBar* bar, QList<int>& values) : m_bar(bar), m_values(values) {
            bar->installEventFilter(this);
        }
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) m_values << m_bar->value();
            return false;
        }

    private:
        QProgressBar* m_bar;
        QList<int>& m_values;
    };

    std::unique_ptr<Form1> m_window;
    QTreeView* m_list = nullptr;
    QStringList m_popups;
};

KORVATEK_TEST_CLASS(WindowTest);

}  // namespace korvatek::gui::test

#include "window_test.moc"
