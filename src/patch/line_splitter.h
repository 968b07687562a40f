#pragma once
// Splits text that arrives in pieces into lines: CR LF, LF and a lone CR each end a line, also
// when a CR LF is split between two pieces. A last line without an ending counts when it is
// not empty.

#include <string>
#include <string_view>

namespace korvatek::patch {

class LineSplitter {
public:
    template <class OnLine>
    void feed(std::string_view text, OnLine&& onLine) {
        std::size_t start = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char c = text[i];
            if (c != '\r' && c != '\n') continue;
            if (c == '\n' && m_afterCarriageReturn && i == start && m_partial.empty()) {
                m_afterCarriageReturn = false;  // the LF of a CR LF whose CR ended the line
                start = i + 1;
                continue;
            }
            if (m_partial.empty()) {
                onLine(text.substr(start, i - start));
            } else {
                m_partial.append(text.substr(start, i - start));
                onLine(std::string_view(m_partial));
                m_partial.clear();
            }
            m_afterCarriageReturn = c == '\r';
            start = i + 1;
        }
        if (start < text.size()) {
            m_partial.append(text.substr(start));
            m_afterCarriageReturn = false;
        }
    }

    template <class OnLine>
    void finish(OnLine&& onLine) {
        if (!m_partial.empty()) onLine(std::string_view(m_partial));
        m_partial.clear();
        m_afterCarriageReturn = false;
    }

private:
    std::string m_partial;  // the start of a line that the next piece goes on with
    bool m_afterCarriageReturn = false;
};

}  // namespace korvatek::patch
