#pragma once

#import "plugin/records/plugin_state.h"

namespace koru {

// Returns the groups that contain the current record; nil when there is no current record.
[[nodiscard]] inline NSArray* parentGroupsOfCurrentRecord() {
    return state.g_currentRecordType == kPersonType ? [state.g_person.get() parentGroups]
                                                    : [state.g_group.get() parentGroups];
}

} // namespace koru
