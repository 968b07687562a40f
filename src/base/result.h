#pragma once
// Errors as values: every reader and writer returns a Result. An error says what went wrong
// (a code, one for each thing a person is told) and where (a path or other detail, an offset,
// a limit); which words the person reads is the interface's business, not the reader's.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>


namespace korvatek {

enum class ErrorCode {
    FileMissing,        // no such file, or a name the system refuses
    FileUnreadable,     // exists but cannot be opened or read (a folder, no rights)
    FileUnwritable,     // cannot be created or written
    FileTooLarge,       // a file above the limit for its kind (the limit is in `limit`)
    NotRegularFile,     // a pipe, a device or a socket where a file was expected
    OutputIsInput,      // an output that would replace one of the inputs
    OutputIsFolder,     // an output name that names a folder
    BadMagic,           // not the format it claims to be
    UnsupportedFormat,  // a picture type code the decoder does not know
    BmpNotTrueColour,   // a BMP that is not 24 or 32 bits a pixel
    BmpCompressed,      // a compressed BMP
    PictureTooLarge,    // wider than 240 or higher than 320
    GpfV1TooLarge,      // a picture that version 1 containers cannot hold (above 255)
    OutsideCanvas,      // pixels would land outside the pixel canvas
    GlyphOutsideGrid,   // a glyph or bitmap that does not fit the glyph grid
    BadOffset,          // an offset that cannot be used (data offset 0, before the file)
    Overflow,           // a number does not fit where it has to go
    ModelNotSupported,  // a fullflash of another phone (the model text is the detail)
    FlashTooShort,      // a fullflash too short for its fixed structures (its size is the detail)
    NoFreeSpace,        // no free area large enough for a moved picture
};

struct Error {
    ErrorCode code;
    std::string detail;            // appended to the message (a path, a system error text)
    std::optional<std::uint64_t> offset;  // where in the input, when it helps
    std::optional<std::uint64_t> limit;   // the limit that was exceeded, for a message that names it
};

template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : m_v(std::move(value)) {}           // NOLINT: implicit on purpose
    Result(Error error) : m_v(std::move(error)) {}        // NOLINT
    bool ok() const { return m_v.index() == 0; }
    explicit operator bool() const { return ok(); }
    T& value() { return std::get<0>(m_v); }
    const T& value() const { return std::get<0>(m_v); }
    T& operator*() { return value(); }
    const T& operator*() const { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    const Error& error() const { return std::get<1>(m_v); }

private:
    std::variant<T, Error> m_v;
};

// For operations that produce nothing but may fail.
struct Done {};
using Status = Result<Done>;
inline Status success() { return Done{}; }

inline Error makeError(ErrorCode code, std::string detail = {}, std::optional<std::uint64_t> offset = std::nullopt) {
    return Error{code, std::move(detail), offset, std::nullopt};
}

}  // namespace korvatek
