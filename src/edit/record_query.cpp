#include "edit/record_query.h"

#include <algorithm>
#include <cctype>

#include "edit/text_render.h"

namespace korvatek::edit {

namespace {

using Field = QueryCondition::Field;
using Compare = QueryCondition::Compare;

std::string lower(std::string_view word) {
    std::string out(word);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

// Digits in the given base, at most 8 of them (sizes and numbers are small).
std::optional<std::int64_t> number(std::string_view digits, int base) {
    if (digits.empty() || digits.size() > 8) return std::nullopt;
    std::int64_t value = 0;
    for (char c : digits) {
        const int d = std::isdigit(static_cast<unsigned char>(c)) ? c - '0'
                      : std::isxdigit(static_cast<unsigned char>(c)) ? std::tolower(c) - 'a' + 10
                                                                      : base;
        if (d >= base) return std::nullopt;
        value = value * base + d;
    }
    return value;
}

std::optional<QueryCondition> readWord(const std::string& word) {
    if (word == "changed") return QueryCondition{Field::Changed, Compare::Equal, 1};
    if (word == "unchanged") return QueryCondition{Field::Changed, Compare::Equal, 0};
    if (word == "decodable") return QueryCondition{Field::Decodable, Compare::Equal, 1};
    if (word == "not-decodable" || word == "undecodable") return QueryCondition{Field::Decodable, Compare::Equal, 0};
    for (const char* prefix : {"type:", "t:"}) {
        const std::string_view p(prefix);
        if (word.starts_with(p)) {
            const auto v = number(std::string_view(word).substr(p.size()), 16);
            if (!v || *v > 0xFF) return std::nullopt;
            return QueryCondition{Field::Type, Compare::Equal, *v};
        }
    }
    if (word[0] == 'w' || word[0] == 'h') {
        static constexpr std::pair<std::string_view, Compare> operators[] = {
            {"<=", Compare::LessOrEqual}, {">=", Compare::GreaterOrEqual}, {"<", Compare::Less},
            {">", Compare::Greater}, {"=", Compare::Equal}};
        const std::string_view rest = std::string_view(word).substr(1);
        for (const auto& [text, compare] : operators) {
            if (!rest.starts_with(text)) continue;
            const auto v = number(rest.substr(text.size()), 10);
            if (!v) return std::nullopt;
            return QueryCondition{word[0] == 'w' ? Field::Width : Field::Height, compare, *v};
        }
    }
    if (const auto x = word.find_first_of("x*"); x != std::string::npos && x > 0 && std::isdigit(static_cast<unsigned char>(word[0]))) {
        const auto w = number(std::string_view(word).substr(0, x), 10);
        const auto h = number(std::string_view(word).substr(x + 1), 10);
        if (w && h) return QueryCondition{Field::Size, Compare::Equal, *w, *h};
    }
    if (word.starts_with("0x") || word.starts_with("x")) {
        const auto v = number(std::string_view(word).substr(word[0] == 'x' ? 1 : 2), 16);
        if (v) return QueryCondition{Field::Number, Compare::Equal, *v};
        return std::nullopt;
    }
    if (const auto v = number(word, 10)) return QueryCondition{Field::Number, Compare::Equal, *v};
    if (const auto v = number(word, 16)) return QueryCondition{Field::Number, Compare::Equal, *v};  // "00A"
    return std::nullopt;
}

bool holds(std::int64_t actual, Compare compare, std::int64_t wanted) {
    switch (compare) {
        case Compare::Less: return actual < wanted;
        case Compare::LessOrEqual: return actual <= wanted;
        case Compare::Equal: return actual == wanted;
        case Compare::GreaterOrEqual: return actual >= wanted;
        case Compare::Greater: return actual > wanted;
    }
    return false;
}

bool sizeHolds(const QueryCondition& c, std::int64_t width, std::int64_t height) {
    if (c.field == Field::Size) return width == c.value && height == c.height;
    return holds(c.field == Field::Width ? width : height, c.compare, c.value);
}

// "×" (the multiplication sign, UTF-8) reads as x.
std::string withPlainTimes(const std::string& word) {
    std::string out;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word.compare(i, 2, "\xC3\x97") == 0) {
            out += 'x';
            ++i;
        } else {
            out += word[i];
        }
    }
    return out;
}

}  // namespace

RecordQuery readQuery(std::string_view text, QueryFor what) {
    RecordQuery query;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t start = text.find_first_not_of(" \t", at);
        if (start == std::string_view::npos) break;
        const std::size_t end = std::min(text.find_first_of(" \t", start), text.size());
        const std::string_view typed = text.substr(start, end - start);
        if (what == QueryFor::Glyphs) {
            // One character, not a digit: the glyph of that character.
            const std::u32string character = codePoints(typed);
            if (character.size() == 1 && !(character[0] >= U'0' && character[0] <= U'9')) {
                query.conditions.push_back({Field::Number, Compare::Equal, static_cast<std::int64_t>(character[0])});
                at = end;
                continue;
            }
        }
        const std::string word = withPlainTimes(lower(typed));
        if (const auto condition = readWord(word)) query.conditions.push_back(*condition);
        else query.unreadWords.push_back(std::string(text.substr(start, end - start)));
        at = end;
    }
    return query;
}

bool RecordQuery::needsDecoding() const {
    return std::any_of(conditions.begin(), conditions.end(), [](const QueryCondition& c) { return c.field == Field::Decodable; });
}

bool RecordQuery::matches(const firmware::PictureRecord& record, bool decodable) const {
    if (!unreadWords.empty()) return false;
    for (const QueryCondition& c : conditions) {
        bool ok = false;
        switch (c.field) {
            case Field::Number: ok = record.number == c.value; break;
            case Field::Width:
            case Field::Height:
            case Field::Size: ok = sizeHolds(c, record.width, record.height); break;
            case Field::Type: ok = record.listedType() == c.value || record.type == c.value; break;
            case Field::Changed: ok = record.replaced == (c.value != 0); break;
            case Field::Decodable: ok = decodable == (c.value != 0); break;
        }
        if (!ok) return false;
    }
    return true;
}

bool RecordQuery::matches(const fonts::GlyphRecord& record) const {
    if (!unreadWords.empty()) return false;
    for (const QueryCondition& c : conditions) {
        bool ok = false;
        switch (c.field) {
            case Field::Number: ok = record.code == c.value; break;
            case Field::Width:
            case Field::Height:
            case Field::Size: ok = sizeHolds(c, record.width, record.height); break;
            case Field::Changed: ok = record.replaced == (c.value != 0); break;
            case Field::Type:
            case Field::Decodable: ok = false; break;  // glyphs have neither
        }
        if (!ok) return false;
    }
    return true;
}

}  // namespace korvatek::edit
