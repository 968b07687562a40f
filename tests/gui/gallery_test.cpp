// The picture gallery beside the search box: thumbnails decoded off the window's thread, one
// selection with the list and the preview, the search hiding the same tiles, a crossed tile
// that says why a picture cannot be shown, and a corner on a picture whose replacement waits.
#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QDir>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>

#include "app/error_message.h"
#include "gallery_model.h"
#include "gallery_pane.h"
#include "picture_list_model.h"
#include "preview_widget.h"
#include "test_classes.h"
#include "test_support.h"
#include "thumbnail_cache.h"

namespace korvatek::gui::test {

namespace {

int state(const QModelIndex& index) { return index.data(GalleryModel::StateRole).toInt(); }
constexpr int kReady = static_cast<int>(Thumbnail::State::Ready);
constexpr int kFailed = static_cast<int>(Thumbnail::State::Failed);

}  // namespace

class GalleryTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_gallery = &m_window->gallery();
        // Checks every signal and answer of the model while a fullflash is read into it.
        m_tester = std::make_unique<QAbstractItemModelTester>(&m_gallery->model(),
                                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QString flash = demoFlashPath();   // written once, not timed
        QElapsedTimer clock;
        clock.start();
        m_window->startUp({flash});
        const qint64 opened = clock.elapsed();
        // Nothing was decoded on the window's thread: results arrive only through its event loop.
        QVERIFY(m_gallery->cache().readyCount() < 1701);
        QCOMPARE(m_gallery->model().rowCount(), 1701);
        m_gallery->toggle()->click();
        QVERIFY(m_gallery->view()->isVisible() && m_gallery->slider()->isVisible());
        QVERIFY(!m_window->findChild<QTreeView*>("ListView1")->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(m_gallery->cache().complete(), 10000);
        qInfo("fullflash opened in %lld ms, every thumbnail cached after %lld ms", opened, clock.elapsed());
    }
    void cleanupTestCase() {
        m_tester.reset();
        m_window.reset();
    }

    void tilesDescribeTheirPictureAndWhyOneCannotBeShown() {
        const GalleryModel& model = m_gallery->model();
        const QModelIndex first = model.index(0, 0);
        QCOMPARE(state(first), kReady);
        QCOMPARE(first.data(Qt::DecorationRole).value<QImage>().size(), QSize(240, 320));
        QCOMPARE(first.data(GalleryModel::SizeTextRole).toString(), QStringLiteral("240\u00D7320"));
        const QString spoken = first.data(Qt::AccessibleTextRole).toString();
        QVERIFY2(spoken.startsWith(QStringLiteral("Picture 0, 240 by 320, ")) && spoken.contains(QStringLiteral("-bit")),
                 qPrintable(spoken));

        // The demonstration fullflash has pictures the decoder stops at or refuses.
        int failed = 0;
        QString reason;
        for (int row = 0; row < model.rowCount(); ++row)
            if (state(model.index(row, 0)) == kFailed) {
                ++failed;
                reason = model.index(row, 0).data(Qt::ToolTipRole).toString();
                QVERIFY(model.index(row, 0).data(Qt::DecorationRole).isNull());
            }
        QVERIFY(failed > 0);
        QVERIFY2(reason.contains(QStringLiteral("cannot be shown: ")) && !reason.endsWith(QStringLiteral(": ")),
                 qPrintable(reason));
        // The search's "not-decodable" finds the same tiles, but for a picture of no pixels,
        // which decodes but has nothing to draw.
        auto* find = m_window->findChild<QLineEdit*>("FindPictures");
        find->setText(QStringLiteral("not-decodable"));
        const app::Workspace& ws = m_window->workspace();
        for (int row = 0; row < model.rowCount(); ++row) {
            const auto& record = ws.ListView1[static_cast<std::size_t>(row)];
            const bool nothingToDraw = record.width <= 0 || record.height <= 0;
            if (!m_gallery->view()->isRowHidden(row) || !nothingToDraw)
                QCOMPARE(state(model.index(row, 0)) == kFailed, !m_gallery->view()->isRowHidden(row));
        }
        find->clear();
    }

    void aRecordThatCannotBeDecodedFailsWithItsReason() {
        codec::PixelCanvas canvas;
        const Bytes flash(4096, 0x5A);
        firmware::PictureRecord noData;
        noData.width = 16;
        noData.height = 16;
        noData.type = 0x88;
        const Thumbnail none = decodeThumbnail(ByteView(flash.data(), flash.size()), noData, canvas);
        QCOMPARE(static_cast<int>(none.state), kFailed);
        QVERIFY(none.error && none.error->code == ErrorCode::BadOffset);
        firmware::PictureRecord unknownType = noData;
        unknownType.dataAddress = 0xA0000100;
        unknownType.type = 0x33;
        const Thumbnail unknown = decodeThumbnail(ByteView(flash.data(), flash.size()), unknownType, canvas);
        QCOMPARE(static_cast<int>(unknown.state), kFailed);
        QVERIFY(unknown.error && unknown.error->code != ErrorCode::BadOffset);
        QVERIFY(unknown.image.isNull());
        firmware::PictureRecord flat = unknownType;
        flat.type = 0x08;
        flat.height = 0;
        const Thumbnail none2 = decodeThumbnail(ByteView(flash.data(), flash.size()), flat, canvas);
        QVERIFY(none2.state == Thumbnail::State::Failed && none2.empty);
    }

    void picturesAreEnlargedByWholeFactorsOrShrunkToFit() {
        const QRect square(100, 10, 80, 80);
        QCOMPARE(tilePictureRect({16, 16}, square), QRect(100, 10, 80, 80));   // 5 times
        QCOMPARE(tilePictureRect({13, 11}, square), QRect(101, 17, 78, 66));   // 6 times, centred
        QCOMPARE(tilePictureRect({80, 81}, square).size(), QSize(79, 80));     // one line too high: shrunk
        QCOMPARE(tilePictureRect({240, 320}, square), QRect(110, 10, 60, 80));
        QCOMPARE(tilePictureRect({200, 1}, square).size(), QSize(80, 1));      // never thinner than a pixel
        QVERIFY(tilePictureRect({0, 5}, square).isEmpty());
    }

    // The workers keep the bytes they read: a fullflash closed under them is released only
    // when they are done, and a cache started over or closed midway drops its work safely.
    void theWorkersOutliveAClosedFullflashAndACacheStartedOver() {
        auto opened = app::ReadOnlyFile::open(demoFlashPath().toStdString(), std::uint64_t{1} << 30);
        QVERIFY(opened.ok());
        std::shared_ptr<const app::ReadOnlyFile> flash = std::move(opened.value());
        const std::weak_ptr<const app::ReadOnlyFile> watch = flash;
        const std::vector<firmware::PictureRecord> records = m_window->workspace().ListView1;
        {
            ThumbnailCache cache;
            for (int n = 0; n < 20; ++n) cache.reset(flash, records);
            QSignalSpy finished(&cache, &ThumbnailCache::finished);
            flash.reset();   // closed: only the workers hold the bytes now
            QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 10000);
            QCOMPARE(cache.readyCount(), 1701);
            QCOMPARE(cache.at(0).image.size(), QSize(240, 320));
            QTRY_VERIFY(watch.expired());   // and let go of them once done
        }
        ThumbnailCache closedAtOnce;
        closedAtOnce.reset(m_window->workspace().firmware, records);
    }

    void aTileAndARowShareOneSelection() {
        const app::Workspace& ws = m_window->workspace();
        const GalleryModel& model = m_gallery->model();
        QListView* view = m_gallery->view();
        view->scrollToTop();
        QCoreApplication::processEvents();
        const int perLine = view->viewport()->width() / view->gridSize().width();
        QVERIFY(perLine > 1);
        // Tiles that show a picture, so that no message interrupts the walk.
        int start = 1;
        while (state(model.index(start, 0)) != kReady || state(model.index(start + 1, 0)) != kReady ||
               state(model.index(start + 1 + perLine, 0)) != kReady)
            ++start;
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(model.index(start, 0)).center());
        QCOMPARE(ws.ListView1Selected, start);
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        QCOMPARE(list->currentIndex().row(), start);
        QCOMPARE(m_window->findChild<PreviewWidget*>("Picture1")->image().size(),
                 QSize(ws.ListView1[static_cast<std::size_t>(start)].width, ws.ListView1[static_cast<std::size_t>(start)].height));

        // The keyboard walks the tiles and the Workspace follows.
        view->setFocus();
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(ws.ListView1Selected, start + 1);
        QTest::keyClick(view, Qt::Key_Down);
        QCOMPARE(ws.ListView1Selected, start + 1 + perLine);
        QCOMPARE(view->currentIndex().row(), start + 1 + perLine);

        // A row chosen in the list brings its tile into view.
        list->setCurrentIndex(m_window->pictureModel().index(1500, 0));
        QCOMPARE(ws.ListView1Selected, 1500);
        QCOMPARE(view->currentIndex().row(), 1500);
        QVERIFY(view->viewport()->rect().intersects(view->visualRect(m_gallery->model().index(1500, 0))));
    }

    // A screen reader reads each tile's sentence and the gallery's name.
    void screenReadersHearTheTiles() {
        QAccessibleInterface* gallery = QAccessible::queryAccessibleInterface(m_gallery->view());
        QVERIFY(gallery);
        QCOMPARE(gallery->text(QAccessible::Name), QStringLiteral("Picture gallery"));
        QVERIFY(gallery->childCount() > 0);
        const QString first = gallery->child(0)->text(QAccessible::Name);
        QVERIFY2(first.startsWith(QStringLiteral("Picture 0, 240 by 320")), qPrintable(first));
    }

    void theSearchHidesTheSameTiles() {
        auto* find = m_window->findChild<QLineEdit*>("FindPictures");
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        QElapsedTimer clock;
        clock.start();
        find->setText(QStringLiteral("16x16"));
        QCoreApplication::processEvents();
        qInfo("search to list and gallery: %lld ms", clock.elapsed());
        int listed = 0;
        for (int row = 0; row < 1701; ++row) {
            listed += !list->isRowHidden(row, {});
            QCOMPARE(m_gallery->view()->isRowHidden(row), list->isRowHidden(row, {}));
        }
        QVERIFY(listed > 0 && listed < 1701);
        QCOMPARE(shownTiles(), listed);
        find->clear();
        QCOMPARE(shownTiles(), 1701);
    }

    void theSliderResizesTheTiles() {
        const QSize before = m_gallery->view()->gridSize();
        m_gallery->slider()->setValue(GalleryPane::kMaxTile);
        QCOMPARE(m_gallery->tileSize(), GalleryPane::kMaxTile);
        QVERIFY(m_gallery->view()->gridSize().width() > before.width() + 100);
        m_gallery->slider()->setValue(GalleryPane::kMinTile - 10);
        QCOMPARE(m_gallery->tileSize(), GalleryPane::kMinTile);
        m_gallery->setTileSize(GalleryPane::kDefaultTile);
        QVERIFY(!m_gallery->slider()->accessibleName().isEmpty() && !m_gallery->slider()->toolTip().isEmpty());
        QVERIFY(!m_gallery->toggle()->accessibleName().isEmpty() && !m_gallery->view()->accessibleName().isEmpty());
    }

    void aReplacedPictureIsMarkedAndAnotherFullflashStartsOver() {
        // A container dropped on a tile replaces that tile's picture, as on a list row.
        const QString file = freshFolder(QStringLiteral("gallery")) + QStringLiteral("/any name.gpf2");
        QVERIFY(QFile::copy(demoPictureGpf2(12), file));
        QSignalSpy changed(&m_gallery->model(), &QAbstractItemModel::dataChanged);
        ModalAnswerer answers;
        QListView* view = m_gallery->view();
        view->scrollTo(m_gallery->model().index(12, 0));
        drop({file}, view->viewport(), view->visualRect(m_gallery->model().index(12, 0)).center());
        QVERIFY(m_window->workspace().ListView1[12].replaced);
        QVERIFY(m_gallery->model().index(12, 0).data(GalleryModel::ReplacedRole).toBool());
        QVERIFY(!m_gallery->model().index(11, 0).data(GalleryModel::ReplacedRole).toBool());
        QVERIFY(!changed.isEmpty());

        const app::Workspace& ws = m_window->workspace();
        const app::ReadOnlyFile* before = ws.firmware.get();
        QSignalSpy finished(&m_gallery->cache(), &ThumbnailCache::finished);
        m_window->startUp({demoFlashPath()});   // opened anew: the cache starts over on the new bytes
        QVERIFY2(ws.firmware.get() != before, qPrintable(answers.texts.join(QStringLiteral(" / "))));
        QVERIFY(m_gallery->cache().holds(ws.firmware.get(), ws.ListView1));
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 10000);
        QVERIFY(m_gallery->cache().complete());
        QVERIFY(!m_gallery->model().index(12, 0).data(GalleryModel::ReplacedRole).toBool());
    }

    void screenshotOfTheGallery() {
        QVERIFY(QDir().mkpath(KORVATEK_SCREENSHOT_DIR));
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        list->setCurrentIndex(m_window->pictureModel().index(3, 0));
        m_gallery->view()->scrollToTop();
        // A picture whose replacement waits, for its corner to be seen.
        const QString file = freshFolder(QStringLiteral("gallery")) + QStringLiteral("/6.gpf2");
        QVERIFY(QFile::copy(demoPictureGpf2(2), file));
        {
            ModalAnswerer answers;
            drop({file});
        }
        list->setCurrentIndex(m_window->pictureModel().index(3, 0));
        QCoreApplication::processEvents();
        QVERIFY(m_gallery->model().index(6, 0).data(GalleryModel::ReplacedRole).toBool());
        QVERIFY(m_window->grab().save(QStringLiteral(KORVATEK_SCREENSHOT_DIR "/form1_gallery.png")));
    }

private:
    int shownTiles() const {
        int n = 0;
        for (int row = 0; row < m_gallery->model().rowCount(); ++row) n += !m_gallery->view()->isRowHidden(row);
        return n;
    }
    void drop(const QStringList& files, QWidget* target = nullptr, QPoint at = {600, 600}) {
        dropFiles(target ? target : m_window.get(), files, at);
    }
    std::unique_ptr<Form1> m_window;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    GalleryPane* m_gallery = nullptr;
};

KORVATEK_TEST_CLASS(GalleryTest);

}  // namespace korvatek::gui::test

#include "gallery_test.moc"
