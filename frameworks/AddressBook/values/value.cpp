#include "frameworks/AddressBook/values/value.h"

namespace addressbook {

bool MultiValue::operator==(const MultiValue& other) const {
    return primary == other.primary && entries == other.entries;
}

bool Value::operator==(const Value& other) const {
    return static_cast<const variant&>(*this) == static_cast<const variant&>(other);
}

int typeOf(const Value& value) {
    static constexpr Type kTypes[] = {Type::unknown, Type::string,    Type::integer,        Type::real,
                                      Type::date,    Type::date,      Type::dateComponents, Type::data,
                                      Type::array,   Type::dictionary};
    const auto* list = value.as<MultiValue>();
    if (list == nullptr) {
        return static_cast<int>(kTypes[value.index()]);
    }
    int common = 0;
    for (const Entry& entry : list->entries) {
        const int type = typeOf(entry.value);
        if (type == 0 || (type & kMultiValue) != 0 || (common != 0 && type != common)) {
            return 0;
        }
        common = type;
    }
    return common == 0 ? 0 : common + kMultiValue;
}

} // namespace addressbook
