#include "PropertyList.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "BigEndian.h"
#include "EffectIdentity.h"

namespace {

class PropertyList {
public:
    explicit PropertyList(ListForm listForm) : form(listForm) {}

    void addNumber(std::uint32_t key, std::uint32_t value) { add(key, number(value, 4)); }
    void addShorts(std::uint32_t key, std::initializer_list<std::uint32_t> values) {
        std::string data;
        for (const std::uint32_t value : values)
            data += number(value, 2);
        add(key, data);
    }
    void addText(std::uint32_t key, std::string text) {
        if (form == ListForm::kWindows) fill(text);
        add(key, text);
    }

    std::string bytes() const {
        const std::string start = form == ListForm::kWindows ? number(1, 2) : "";
        return start + number(PiPL_LIST_VERSION, 4) + number(count, 4) + properties;
    }

private:
    static void fill(std::string& data) { data.resize((data.size() + 3) / 4 * 4, '\0'); }

    std::string number(std::uint32_t value, int size) const {
        const std::string digits = BigEndian(value, size);
        return form == ListForm::kWindows ? std::string(digits.rbegin(), digits.rend()) : digits;
    }

    void add(std::uint32_t key, std::string data) {
        properties += number(PiPL_VENDOR, 4) + number(key, 4) + number(0, 4);
        properties += number(static_cast<std::uint32_t>(data.size()), 4);
        fill(data);
        properties += data;
        ++count;
    }

    ListForm form;
    std::string properties;
    std::uint32_t count = 0;
};

std::string PascalString(std::string_view text) {
    return static_cast<char>(text.size()) + std::string(text);
}

}  // namespace

std::string MakePropertyList(ListForm form) {
    PropertyList list(form);
    list.addNumber(PiPL_KIND, PiPL_KIND_EFFECT);
    list.addText(PiPL_NAME, PascalString(kEffectName));
    list.addText(PiPL_CATEGORY, PascalString(kEffectCategory));
    list.addText(PiPL_ENTRY_MAC_INTEL, PascalString(kEffectEntryPoint));
    list.addText(PiPL_ENTRY_MAC_ARM, PascalString(kEffectEntryPoint));
    list.addText(PiPL_ENTRY_WINDOWS, std::string(kEffectEntryPoint) + '\0');
    list.addShorts(PiPL_LIST_FORMAT, {2, 0});
    list.addShorts(PiPL_INTERFACE_VERSION, {PF_INTERFACE_MAJOR, PF_INTERFACE_MINOR});
    list.addNumber(PiPL_EFFECT_VERSION, kEffectVersion);
    if (form == ListForm::kWindows)
        list.addNumber(PiPL_INFO_FLAGS, 0);
    else
        list.addShorts(PiPL_INFO_FLAGS, {0});
    list.addNumber(PiPL_OUT_FLAGS, kEffectOutFlags);
    list.addNumber(PiPL_OUT_FLAGS2, kEffectOutFlags2);
    list.addText(PiPL_MATCH_NAME, PascalString(kEffectMatchName));
    list.addNumber(PiPL_RESERVED, 0);
    return list.bytes();
}
