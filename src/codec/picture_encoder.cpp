#include "codec/picture_encoder.h"

#include <cmath>
#include <optional>
#include <vector>

namespace korvatek::codec {

namespace {

bool isTransparentColour(int red, int green, int blue) { return red == 169 && green == 171 && blue == 169; }

int scaledDown(int value, int levels) { return static_cast<int>(std::lround(value * levels / 255.0)); }

// Width and height of what the canvas holds, clipped to the canvas itself.
int clippedWidth(const PixelCanvas& c) { return std::min(c.metaWidth, c.columns()); }
int clippedHeight(const PixelCanvas& c) { return std::min(c.metaHeight, c.rows()); }

}  // namespace

std::uint8_t RGBtoBIT8(int red, int green, int blue) {
    if (isTransparentColour(red, green, blue)) return 0xC0;
    return static_cast<std::uint8_t>(scaledDown(red, 7) * 32 + scaledDown(green, 7) * 4 + scaledDown(blue, 3));
}

std::array<std::uint8_t, 2> RGBtoBIT16(int red, int green, int blue) {
    if (isTransparentColour(red, green, blue)) return {0x00, 0xE0};
    const int word = scaledDown(red, 31) * 2048 + scaledDown(green, 63) * 32 + scaledDown(blue, 31);
    return {static_cast<std::uint8_t>(word & 0xFF), static_cast<std::uint8_t>(word >> 8)};
}

Bytes SaveGPFmono(const PixelCanvas& canvas) {
    const int width = clippedWidth(canvas);
    const int height = clippedHeight(canvas);
    Bytes out;
    for (int y = 0; y < height; ++y) {
        int bits = 0;
        std::uint8_t byte = 0;
        for (int x = 0; x < width; ++x) {
            const Cell& c = canvas.at(x, y);
            const double mean = (c[0] + c[1] + c[2]) / 3.0;
            byte = static_cast<std::uint8_t>((byte << 1) | (mean < 127 ? 1 : 0));
            if (++bits == 8) {
                out.push_back(byte);
                bits = 0;
                byte = 0;
            }
        }
        if (bits > 0) {  // the rest of the row's last byte is set bits, which decoders skip
            while (bits++ < 8) byte = static_cast<std::uint8_t>((byte << 1) | 1);
            out.push_back(byte);
        }
    }
    return out;
}

namespace {

// The encoder's state machine, kept as it has always run, because the data of its last group
// depend on exactly where the scan is when it meets the end.
class RunLengthEncoder {
public:
    RunLengthEncoder(const PixelCanvas& canvas, int targetType)
        : m_canvas(canvas), m_target(targetType), m_width(clippedWidth(canvas)), m_height(clippedHeight(canvas)) {}

    RunLengthResult run() {
        // A zero or negative side never brings the scan to its end: it would run off the canvas.
        if (m_width <= 0 || m_height <= 0) return {{}, 0, true};
        while (!m_finished) groupStart();
        return {std::move(m_out), m_steps};
    }

private:
    const Cell& cellAtScan() const { return m_canvas.at(m_x, m_y); }

    // Moves the scan on; false when it met the end (the end procedure has then run).
    bool advance(const Cell* next) {
        if (++m_x == m_width) {
            m_x = 0;
            if (++m_y == m_height) {
                endProcedure(next);
                m_finished = true;
                return false;
            }
        }
        return true;
    }

    void stepBack() {
        if (--m_x < 0) {
            m_x = m_width - 1;
            if (--m_y < 0) ++m_steps;  // "err": shown, and the scan goes on
        }
    }

    void groupStart() {
        m_prev = cellAtScan();
        if (!advance(nullptr)) return;
        m_pending.clear();
        m_rep = 1;
        m_lit = 0;
        loop();
    }

    void loop() {
        for (;;) {
            const Cell next = cellAtScan();
            if (!advance(&next)) return;
            if (next != m_prev) {
                if (m_rep > 1) {
                    emit(m_rep, {m_prev});
                    stepBack();
                    return;  // the next group starts at `next`
                }
                ++m_lit;
                m_pending.push_back(m_prev);
                m_prev = next;
                if (m_lit == 127) emit(256 - 127, m_pending);
            } else {
                if (m_lit > 0) emit(256 - m_lit, m_pending);
                if (++m_rep == 127) {
                    emit(127, {m_prev});
                    return;
                }
            }
        }
    }

    // Runs inside the advance that read the last cell, before it is compared.
    void endProcedure(const Cell* next) {
        std::vector<Cell> cells;
        if (m_lit > 0) {
            m_control = 256 - m_lit;
            cells = m_pending;
            if (next) cells.push_back(*next);
        } else if (m_rep > 1) {
            m_control = m_rep + 1;
            cells = {m_prev};
        }
        if (m_control) m_out.push_back(static_cast<std::uint8_t>(*m_control));
        for (const Cell& c : cells) put(c);
    }

    void emit(int control, const std::vector<Cell>& cells) {
        m_control = control;
        m_out.push_back(static_cast<std::uint8_t>(control));
        for (const Cell& c : cells) put(c);
        m_pending.clear();
        m_rep = 1;
        m_lit = 0;
    }

    void put(const Cell& c) {
        if (m_target == kTarget24Bit) {
            m_out.insert(m_out.end(), c.begin(), c.end());
        } else if (m_target == kTarget16Bit) {
            const auto word = RGBtoBIT16(c[2], c[1], c[0]);
            m_out.insert(m_out.end(), word.begin(), word.end());
        } else {
            m_out.push_back(RGBtoBIT8(c[2], c[1], c[0]));
        }
    }

    const PixelCanvas& m_canvas;
    int m_target;
    int m_width;
    int m_height;
    int m_x = 0;
    int m_y = 0;
    bool m_finished = false;
    Cell m_prev{};
    std::vector<Cell> m_pending;
    int m_rep = 1;
    int m_lit = 0;
    std::optional<int> m_control;  // the last control byte computed; none before the first group
    int m_steps = 0;
    Bytes m_out;
};

}  // namespace

RunLengthResult SaveGPFraw(const PixelCanvas& canvas, int targetType) {
    return RunLengthEncoder(canvas, targetType).run();
}

}  // namespace korvatek::codec
