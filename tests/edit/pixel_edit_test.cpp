// The editors' drawing operations on small grids drawn as text: '#' ink, '.' paper, 'o' another
// colour.
#include "edit/pixel_edit.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace korvatek::edit {

namespace {

constexpr Colour kOther = 0xFF00FF00;

PixelGrid grid(std::initializer_list<const char*> rows) {
    PixelGrid g(static_cast<int>(std::string(*rows.begin()).size()), static_cast<int>(rows.size()));
    int y = 0;
    for (const char* row : rows) {
        for (int x = 0; row[x] != '\0'; ++x) g.set(x, y, row[x] == '#' ? kInk : row[x] == 'o' ? kOther : kPaper);
        ++y;
    }
    return g;
}

std::string text(const PixelGrid& g) {
    std::string out;
    for (int y = 0; y < g.height; ++y) {
        for (int x = 0; x < g.width; ++x) out += g.at(x, y) == kInk ? '#' : g.at(x, y) == kOther ? 'o' : '.';
        out += '/';
    }
    return out;
}

}  // namespace

TEST(PixelEdit, operationsOnSmallGrids) {
    struct Case {
        const char* what;
        PixelGrid before;
        std::function<void(PixelGrid&)> edit;
        const char* after;
    };
    const Case cases[] = {
        {"line, shallow", grid({".....", ".....", "....."}), [](PixelGrid& g) { drawLine(g, 0, 0, 4, 2, kInk); },
         "#..../.##../...##/"},
        {"line, steep and backwards", grid({"...", "...", "...", "..."}), [](PixelGrid& g) { drawLine(g, 2, 3, 0, 0, kInk); },
         "#../.#./.#./..#/"},
        {"line off the edge", grid({"...", "..."}), [](PixelGrid& g) { drawLine(g, -2, 0, 4, 0, kInk); }, "###/.../"},
        {"rectangle outline", grid({"....", "....", "...."}), [](PixelGrid& g) { drawRectangle(g, 3, 2, 0, 0, kInk, false); },
         "####/#..#/####/"},
        {"rectangle filled, clipped", grid({"...", "..."}), [](PixelGrid& g) { drawRectangle(g, 1, 1, 5, 5, kInk, true); },
         ".../.##/"},
        {"fill stops at other colours and diagonals", grid({"..#.", ".#..", "#..."}),
         [](PixelGrid& g) { floodFill(g, 0, 0, kOther); }, "oo#./o#../#.../"},
        {"fill of the same colour changes nothing", grid({"#."}), [](PixelGrid& g) { floodFill(g, 0, 0, kInk); }, "#./"},
        {"shift right drops the last column", grid({"#.#", ".#."}), [](PixelGrid& g) { shift(g, 1, 0, kPaper); },
         ".#./..#/"},
        {"shift up", grid({"#..", ".#.", "..#"}), [](PixelGrid& g) { shift(g, 0, -1, kPaper); }, ".#./..#/.../"},
        {"mirror left to right", grid({"##.", "#.."}), [](PixelGrid& g) { mirror(g, true); }, ".##/..#/"},
        {"mirror top to bottom, odd rows", grid({"#..", ".#.", "..#"}), [](PixelGrid& g) { mirror(g, false); },
         "..#/.#./#../"},
        {"resize keeps the top left", grid({"#.#", ".#."}), [](PixelGrid& g) { g = resized(g, 2, 3, kPaper); },
         "#./.#/../"},
    };
    for (const Case& c : cases) {
        PixelGrid g = c.before;
        c.edit(g);
        EXPECT_EQ(text(g), c.after) << c.what;
    }
}

TEST(PixelEdit, historyUndoesAndRedoesAndForgetsRedoOnANewChange) {
    EditHistory history(2);
    PixelGrid g = grid({".."});
    for (int x = 0; x < 2; ++x) {
        history.record(g);
        g.set(x, 0, kInk);
    }
    g = history.undo(g);
    EXPECT_EQ(text(g), "#./");
    g = history.redo(g);
    EXPECT_EQ(text(g), "##/");
    g = history.undo(history.undo(g));
    EXPECT_EQ(text(g), "../");
    EXPECT_FALSE(history.canUndo());
    history.record(g);
    g.set(1, 0, kOther);
    EXPECT_FALSE(history.canRedo());
    // the limit: only the last two states are kept
    for (int i = 0; i < 3; ++i) history.record(g);
    EXPECT_TRUE(history.canUndo());
    g = history.undo(history.undo(g));
    EXPECT_FALSE(history.canUndo());
}

}  // namespace korvatek::edit
