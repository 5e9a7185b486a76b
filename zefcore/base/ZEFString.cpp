// ZEFString and its null object.
#include "zefcore/base/ZEFString.h"

#include <functional>
#include <stdexcept>

namespace {
// Dynamically initialised at library load, destroyed at unload.
const ZEFString s_nullString("!!! NULL String !!!");

// Returns count as a length; a negative count is refused as std::string refuses a
// length beyond its maximum, before any pointer is formed from it.
std::string::size_type checkedLength(int count) {
    if (count < 0)
        throw std::length_error("ZEFString: negative length");
    return std::string::size_type(count);
}
} // namespace

const ZEFString &ZEFString::m_null = s_nullString;

ZEFString::ZEFString() = default;

ZEFString::ZEFString(const std::string &text) : std::string(text) {}

ZEFString::ZEFString(const std::string &text, int offset, int count)
    : std::string(text, std::string::size_type(offset), std::string::size_type(count)) {}

ZEFString::ZEFString(const char *text, int count)
    : std::string(text ? text : "", text ? checkedLength(count) : 0) {}

ZEFString::ZEFString(const char *text) : std::string(text ? text : "") {}

ZEFString::ZEFString(int count, char character) : std::string(std::string::size_type(count), character) {}

ZEFString::ZEFString(const char *first, const char *last)
    : std::string(first, first && std::greater<const char *>()(last, first) ? last : first) {}

ZEFString::~ZEFString() = default;

bool ZEFString::isNull() const {
    return this == &m_null;
}
