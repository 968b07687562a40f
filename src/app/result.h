#pragma once
// Errors as values: every reader and writer of the core returns a Result, and the
// commands turn a failed one into a message from the message table and ActionFailed.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "settings/message_key.h"

namespace korvatek {

enum class ErrorCode {
    FileMissing,        // no such file, or a name the system refuses
    FileUnreadable,     // exists but cannot be opened or read (a folder, no rights)
    FileUnwritable,     // cannot be created or written
    NotRegularFile,     // a pipe, a device or a socket where a file was expected
    OutputIsInput,      // an output that would replace one of the inputs
    OutputIsFolder,     // an output name that names a folder
    BadMagic,           // not the format it claims to be
    UnsupportedFormat,  // a format the tool does not handle (bit depth, compression)
    TooLarge,           // a size above a fixed limit
    OutsideCanvas,      // pixels would land outside the pixel canvas
    BadOffset,          // an offset that cannot be used (data offset 0, before the file)
    Truncated,          // the input ends before a fixed structure does
    Overflow,           // a number does not fit where it has to go
    Cancelled,          // the person cancelled a dialog
};

struct Error {
    ErrorCode code;
    settings::MessageKey message;  // what the person is shown
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

inline Error makeError(ErrorCode code, settings::MessageKey message, std::string detail = {},
                       std::optional<std::uint64_t> offset = std::nullopt) {
    return Error{code, message, std::move(detail), offset, std::nullopt};
}

}  // namespace korvatek
