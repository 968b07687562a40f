#pragma once
// The picture patch: replacements placed over the fullflash and written as V_Klay text. A
// replacement whose data are no longer than the picture's own goes in place (the rest of the
// old data stays as it is); a longer one moves to free space found from the search start on.

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "base/bytes.h"
#include "base/result.h"
#include "edit/opened_flash.h"
#include "edit/picture_decode.h"
#include "firmware/layout.h"
#include "firmware/picture_record.h"

namespace korvatek::edit {

inline constexpr std::uint32_t kFreeSpaceStart = firmware::kFreeSpaceSearchStart;

// A length as the commands have always compared lengths: through its hex text, so that four
// digits or fewer read as a 16-bit signed number (0x9000 bytes compare as negative).
std::int64_t listedLength(std::uint64_t length);

struct PicturePlacement {
    enum class Kind { InPlace, Moved, Refused };
    Kind kind = Kind::Refused;
    std::uint32_t address = 0;        // where the new data begin
    std::int64_t length = 0;          // the new data's listed length
    std::uint32_t nextFreeSpace = 0;  // the search start for the next moved picture
    std::string section;              // the patch text of this replacement
    std::optional<Error> error;       // why it was refused
};

// Places `replacement` (the container `container`, decoded) over picture `record`, whose own
// data have the listed length `oldLength`.
PicturePlacement placePicture(ByteView flash, const firmware::PictureRecord& record, std::int64_t oldLength,
                              ByteView container, const DecodedPicture& replacement, std::uint32_t freeSpaceStart);

// A patch being collected: the header once, then each placed replacement in order. Each picture
// can be replaced once per patch.
class PicturePatch {
public:
    PicturePatch(const OpenedFlash& flash, std::uint32_t freeSpaceStart = kFreeSpaceStart)
        : m_flash(flash), m_freeSpace(freeSpaceStart) {}

    bool isReplaced(int number) const { return m_replaced.count(number) != 0; }
    PicturePlacement add(const firmware::PictureRecord& record, std::int64_t oldLength, ByteView container,
                         const DecodedPicture& replacement);
    bool empty() const { return m_text.empty(); }
    const std::string& text() const { return m_text; }

private:
    const OpenedFlash& m_flash;
    std::uint32_t m_freeSpace;
    std::string m_text;
    std::set<int> m_replaced;
};

}  // namespace korvatek::edit
