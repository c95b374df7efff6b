#include "host/loader/host_release.h"

#include <iterator>
#include <map>

namespace host {

const std::u16string& hostRelease(int interfaceVersion) {
    static const std::map<int, std::u16string> kReleases = {
        {0, u"3.0"},   {11, u"4.0"},  {12, u"4.1"},  {14, u"5.0"},  {17, u"6.0"},  {50, u"7.0"},
        {51, u"8.0"},  {52, u"11.0"}, {53, u"12.0"}, {54, u"13.0"}, {55, u"14.0"}, {56, u"15.0"},
        {57, u"16.0"}, {59, u"17.0"}, {60, u"18.0"}, {62, u"19.0"}, {63, u"19.1"}, {64, u"19.2"},
        {65, u"19.3"}, {66, u"19.4"}, {67, u"19.5"}, {68, u"19.6"}, {71, u"20.1"}, {72, u"20.2"},
        {73, u"20.3"}, {74, u"21.0"}, {76, u"22.0"},
    };
    return std::prev(kReleases.upper_bound(interfaceVersion))->second;
}

} // namespace host
