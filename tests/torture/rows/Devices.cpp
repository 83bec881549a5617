#include "rows/Devices.h"

#include <string>
#include <vector>

#include "Link.h"
#include "support/Connection.h"
#include "support/Lines.h"

void closeDevices() {
    std::vector<std::string> requests;
    for (const char* device : {"178 0", "179 0", "180 0", "180 1"})
        requests.push_back("blockdev close " + std::string(device));
    for (const char* channel : {"0", "1", "2", "240", "241"})
        requests.push_back("serial close " + std::string(channel));
    const Connection station;
    for (const std::string& text : requests) {
        station.send(request(text));
        // A refusal has a reason ahead of it.
        while (station.receiveLine().rfind("\x02#Info ", 0) == 0) {
        }
    }
    expectNothingMore(station);
}
