#pragma once
// The one reader of binary input. Reads are bounds-checked: a read that runs past the end
// yields zero bytes for what is missing and still moves the position by its full width, as a
// fixed-width read into a zeroed template always has; ranPastEnd() tells that it happened.
// Nothing is ever read outside the data.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/bytes.h"

namespace korvatek {

class ByteReader {
public:
    explicit ByteReader(ByteView data, std::uint64_t position = 0) : m_data(data), m_pos(position) {}

    std::uint64_t size() const { return m_data.size(); }
    std::uint64_t position() const { return m_pos; }
    void seek(std::uint64_t position) { m_pos = position; }
    void skip(std::uint64_t count) { m_pos += count; }
    bool atEnd() const { return m_pos >= m_data.size(); }
    bool ranPastEnd() const { return m_ranPastEnd; }
    ByteView data() const { return m_data; }

    std::uint8_t peekU8() const { return m_pos < m_data.size() ? m_data[static_cast<std::size_t>(m_pos)] : 0; }

    std::uint8_t u8() {
        const std::uint8_t b = peekU8();
        if (m_pos >= m_data.size()) m_ranPastEnd = true;
        ++m_pos;
        return b;
    }
    std::uint16_t u16le() {
        const std::uint16_t lo = u8();
        return static_cast<std::uint16_t>(lo | (u8() << 8));
    }
    std::uint32_t u32le() {
        const std::uint32_t lo = u16le();
        return lo | (static_cast<std::uint32_t>(u16le()) << 16);
    }
    std::uint16_t u16be() {
        const std::uint16_t hi = u8();
        return static_cast<std::uint16_t>((hi << 8) | u8());
    }
    std::uint32_t u32be() {
        const std::uint32_t hi = u16be();
        return (hi << 16) | u16be();
    }

    // Copies count bytes into out (zeros for what lies past the end).
    void read(std::uint8_t* out, std::size_t count) {
        const std::size_t available = m_pos < m_data.size() ? static_cast<std::size_t>(m_data.size() - m_pos) : 0;
        const std::size_t present = count < available ? count : available;
        if (present > 0) std::memcpy(out, m_data.data() + m_pos, present);
        if (present < count) {
            std::memset(out + present, 0, count - present);
            m_ranPastEnd = true;
        }
        m_pos += count;
    }
    Bytes bytes(std::size_t count) {
        Bytes out(count);
        read(out.data(), count);
        return out;
    }

private:
    ByteView m_data;
    std::uint64_t m_pos = 0;
    bool m_ranPastEnd = false;
};

}  // namespace korvatek
