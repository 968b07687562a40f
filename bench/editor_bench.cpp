// The editors' figures, offscreen, in milliseconds (median of several runs): a 240 x 320
// picture at its usual enlargement, a pencil dot and the repaint of a 1000 x 700 view of it (a
// whole screen; a stroke repaints only the cells it crosses), the pixels as 16 bits will store them worked out
// again, and a line of text drawn in the first font for the text preview.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "demo/demo_flash.h"
#include "edit/font_glyphs.h"
#include "edit/opened_flash.h"
#include "edit/picture_files.h"
#include "edit/text_render.h"
#include "base/file_io.h"
#include "firmware/layout.h"
#include "app/workspace.h"
#include "pending_panel.h"
#include "pixel_editor.h"
#include "support/scripted_interface.h"

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

template <class Work>
double timed(int runs, Work&& work) {
    std::vector<double> ms;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer clock;
        clock.start();
        work(run);
        ms.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    return median(ms);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    using namespace korvatek;

    // A full-size picture of stripes, so that neither the encoder nor the painter gets it easy.
    edit::PixelGrid picture(240, 320);
    for (int y = 0; y < 320; ++y)
        for (int x = 0; x < 240; ++x) picture.set(x, y, 0xFF000000u | static_cast<edit::Colour>((x * 7 + y * 3) % 256) << 8 | (x % 9 ? 0x40 : 0xC0));
    gui::PixelGridWidget grid;
    grid.setGrid(picture);
    grid.resize(grid.sizeHint());
    QImage target(1000, 700, QImage::Format_ARGB32_Premultiplied);
    const double repaint = timed(15, [&](int run) {
        grid.change([run](edit::PixelGrid& g) { g.set(run, run, edit::kInk); });
        grid.render(&target, {}, QRegion(0, 0, 1000, 700));
    });
    const double stored = timed(15, [&](int) { (void)edit::storedPicture(picture, 0x88); });

    QTemporaryDir folder;
    const std::string flashPath = folder.filePath("demo.bin").toStdString();
    if (!app::writeFile(flashPath, firmware::makeDemoFlash()).ok()) return 1;
    const auto flash = edit::openFlash(flashPath, firmware::kPictureTableOffset, firmware::kPictureMaxIndex);
    if (!flash) return 1;
    const auto font = edit::readFont(*flash, 0);
    const std::u32string line = U"The quick brown fox jumps over the lazy dog 0123456789";
    const double text = timed(15, [&](int) { (void)edit::renderText(flash->bytes(), font.table.rows, line); });

    // The pending-changes panel: 300 pictures waiting, most moved to free space; one taken back
    // plans the other 299 again, and the panel reads the list with its thumbnails.
    app::ScriptedInterface answers;
    app::Workspace ws(answers);
    answers.openFiles.push_back(flashPath);
    ws.mnu_FileOpen();
    edit::PixelGrid block(48, 48);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 48; ++x) block.set(x, y, 0xFF000000u | static_cast<edit::Colour>((x * 37 + y * 91) * 2654435761u >> 8));
    const Bytes blockBmp = *edit::gridBmp(block);
    for (int n = 1; n <= 300; ++n) {
        ws.selectPicture(n);
        ws.ListView1_Click();
        ws.applyEditedPicture(blockBmp, 0x8A);
    }
    const double replan = timed(9, [&](int) {
        ws.removePendingPicture(ws.pendingPictures().front().record.number);
        ws.undoPending();
    }) / 2;
    gui::PendingChangesModel pending(ws);
    const double panel = timed(9, [&](int) { pending.update(true); });

    std::printf("240x320 picture editor (%dx%d), a dot and the repaint of a 1000x700 view: %.2f ms\n", grid.width(),
                grid.height(), repaint);
    std::printf("240x320 picture as 16 bits will store it: %.2f ms\n", stored);
    std::printf("text preview, %zu characters in font 0: %.3f ms\n", line.size(), text);
    std::printf("one of %zu pending pictures taken back, the rest planned again: %.2f ms\n", ws.pendingPictures().size(),
                replan);
    std::printf("pending-changes panel read with its thumbnails, %d rows: %.2f ms\n", pending.rowCount(), panel);
    return 0;
}
