/// \file
/// ZEFString: a std::string with one distinguished null object, m_null, made at
/// library load with the text "!!! NULL String !!!" and told apart by address only.
#pragma once

#include "zefcore/ZEFExport.h"

#include <string>

/// A std::string with one distinguished null object, m_null.
class ZEFCORE_API ZEFString : public std::string {
public:
    ///@{
    /// Each constructor is the std::string constructor of the same form; its
    /// exceptions (bad offset, impossible length) pass through. Null text: empty.
    ZEFString();
    ZEFString(const std::string &text);
    ZEFString(const std::string &text, int offset, int count);
    ZEFString(const char *text, int count);
    ZEFString(const char *text);
    ZEFString(int count, char character);
    ///@}
    /// The range [first, last); an empty or reversed range gives an empty string.
    ZEFString(const char *first, const char *last);
    ~ZEFString();

    /// Returns true if this is the object behind m_null; equal text or a copy is not.
    bool isNull() const;

    /// The null object, with the text "!!! NULL String !!!", told apart by address only.
    static const ZEFString &m_null;
};
