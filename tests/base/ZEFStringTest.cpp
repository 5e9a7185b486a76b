#include "zefcore/base/ZEFString.h"

#include <gtest/gtest.h>

#include <stdexcept>

TEST(ZEFString, NullIsOneObjectByAddress) {
    EXPECT_TRUE(ZEFString::m_null.isNull() && ZEFString::m_null == "!!! NULL String !!!");
    EXPECT_FALSE(ZEFString("!!! NULL String !!!").isNull() || ZEFString(ZEFString::m_null).isNull());
    EXPECT_TRUE(!ZEFString().isNull() && ZEFString().empty());
}

TEST(ZEFString, ConstructorsFollowTheStringForms) {
    const std::string text = "abcdefgh";
    EXPECT_TRUE(ZEFString(text, 2, 3) == "cde" && ZEFString(text, 6, 10) == "gh" &&
                ZEFString(text, 6, -1) == "gh");
    EXPECT_TRUE(ZEFString("abcdefgh", 4) == "abcd" && ZEFString(3, 'z') == "zzz");
    // The std::string form keeps an embedded zero; the C-string form would stop there.
    EXPECT_EQ(ZEFString(std::string("ab\0c", 4)).size(), 4u);
    EXPECT_EQ(ZEFString(text.data() + 1, text.data() + 4), "bcd");
    // Bad arguments: the string's exceptions, or an empty string where no text is given.
    EXPECT_THROW(ZEFString(text, 9, 1), std::out_of_range);
    EXPECT_THROW(ZEFString(text, -1, 1), std::out_of_range);
    EXPECT_THROW(ZEFString("abc", -2), std::length_error);
    EXPECT_THROW(ZEFString(-1, 'z'), std::length_error);
    EXPECT_TRUE(ZEFString(static_cast<const char *>(nullptr)).empty() &&
                ZEFString(text.data() + 4, text.data() + 1).empty());
}
