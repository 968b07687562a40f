#pragma once
// What a person types into the search box, read into conditions on the picture and glyph
// records. Words are separated by blanks and all must hold:
//   5  0005            the number, in decimal (leading zeros allowed: digits alone are decimal)
//   x1F  0x1F  00A     the number in hex, as the list's hex column shows it (a word with a
//                      letter A-F, or "x"/"0x" in front; "x10" is picture 16)
//   176x220            width and height exactly
//   w>100  h<=32  w=16 width or height compared (<, <=, =, >=, >)
//   type:88  t:A0      the Type column's first two digits, in hex
//   changed  unchanged not-decodable  decodable
// For glyphs the number is the "#" code, and a word of one character other than a digit finds
// the glyph of that character (its code); glyphs have no type and are all decodable. A word
// that reads as none of these is told back (and nothing matches), not silently dropped.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "firmware/picture_record.h"
#include "fonts/glyph_record.h"

namespace korvatek::edit {

struct QueryCondition {
    enum class Field { Number, Width, Height, Size, Type, Changed, Decodable };
    enum class Compare { Less, LessOrEqual, Equal, GreaterOrEqual, Greater };
    Field field = Field::Number;
    Compare compare = Compare::Equal;
    std::int64_t value = 0;
    std::int64_t height = 0;   // Size: value is the width
};

struct RecordQuery {
    std::vector<QueryCondition> conditions;   // all must hold; none: everything matches
    std::vector<std::string> unreadWords;     // words that read as no condition

    bool needsDecoding() const;               // asks whether a picture can be decoded
    // `decodable` is asked only when a condition needs it.
    bool matches(const firmware::PictureRecord& record, bool decodable = true) const;
    bool matches(const fonts::GlyphRecord& record) const;
};

enum class QueryFor { Pictures, Glyphs };
RecordQuery readQuery(std::string_view text, QueryFor what = QueryFor::Pictures);

}  // namespace korvatek::edit
