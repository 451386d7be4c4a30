#include "tool/tool_search.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

#include "base/output.h"
#include "base/text.h"
#include "call/paths.h"
#include "tool/tool_places.h"

const char* longest_tool_place() {
    return *std::ranges::max_element(
        tool_places, {}, [](const char* place) { return std::string_view(place).size(); });
}

exit_status Get_HbaCmd_Path() {
    pHBAFlashCmdPath[0] = '\0';
    for (const char* place : tool_places) {
        struct stat status {};
        if (stat(place, &status) == 0) {
            set_text(pHBAFlashCmdPath, place);
            Print(3, "Info: Found flash command: %s\n\n", pHBAFlashCmdPath);
            return RET_OK;
        }
        if (place != tool_places.back()) {
            Print(1, "Info: Flash command %s is not available.\n\n", place);
        }
    }
    Print(1, "Error: Flash command %s is not available (no flash command at all found)\n\n",
          tool_places.back());
    return RET_SCLI_NOT_INSTALLED;
}
