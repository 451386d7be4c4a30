#include "tool/tool_places.h"

const std::array<const char*, 3> tool_places{
    "/usr/sbin/brcmocmanager/brcmhbacmd",
    "/opt/emulex/ocmanager/bin/hbacmd",
    "/usr/sbin/ocmanager/hbacmd",
};
