// The operating system record. The destructor is defined here so that the vtable
// and typeinfo are emitted once, in the library.
#include "zefcore/base/ZEFOSVersion.h"

ZEFOSVersion::eZEFOSVersion ZEFOSVersion::m_osVersion = ZEFOSVersion::eZEFOSUnknown;

ZEFOSVersion::ZEFOSVersion() = default;

ZEFOSVersion::~ZEFOSVersion() = default;

void ZEFOSVersion::init(eZEFOSVersion version) {
    m_osVersion = version;
}

ZEFOSVersion::eZEFOSVersion ZEFOSVersion::getOSVersion() {
    return m_osVersion;
}

bool ZEFOSVersion::isOSX() {
    return m_osVersion == eZEFOSX;
}

bool ZEFOSVersion::isOSXJaguar() {
    return m_osVersion == eZEFOSXJaguar;
}

bool ZEFOSVersion::isOSXPanther() {
    return m_osVersion == eZEFOSXPanther;
}
