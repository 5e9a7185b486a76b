#include "zefcore/base/ZEFOSVersion.h"

#include <gtest/gtest.h>

TEST(ZEFOSVersion, ValuesAreExclusive) {
    EXPECT_EQ(ZEFOSVersion::getOSVersion(), ZEFOSVersion::eZEFOSUnknown);
    EXPECT_FALSE(ZEFOSVersion::isOSX() || ZEFOSVersion::isOSXJaguar() || ZEFOSVersion::isOSXPanther());
    ZEFOSVersion::init(ZEFOSVersion::eZEFOSXJaguar);
    { ZEFOSVersion record; } // making and destroying one changes nothing
    EXPECT_EQ(ZEFOSVersion::getOSVersion(), 2);
    EXPECT_TRUE(ZEFOSVersion::isOSXJaguar());
    EXPECT_FALSE(ZEFOSVersion::isOSX());
    EXPECT_FALSE(ZEFOSVersion::isOSXPanther());
    ZEFOSVersion::init(ZEFOSVersion::eZEFOSXPanther);
    EXPECT_TRUE(ZEFOSVersion::isOSXPanther());
    EXPECT_FALSE(ZEFOSVersion::isOSX() || ZEFOSVersion::isOSXJaguar());
    ZEFOSVersion::init(ZEFOSVersion::eZEFOSX);
    EXPECT_TRUE(ZEFOSVersion::isOSX());
    EXPECT_FALSE(ZEFOSVersion::isOSXJaguar() || ZEFOSVersion::isOSXPanther());
}
