// The colour rules of section ModifyColor: a plain table from old to new colour, and the
// recolouring of entities inside the boxes of chains on a named layer.
#include <string>
#include <vector>

#include "cleanup/class_interface_data.hpp"
#include "cleanup/json_text.hpp"

namespace {

// The texts between "{" and "}": braces do not nest, a second "{" throws away what was gathered,
// and "}" closes an item also when none was opened.
std::vector<std::wstring> BraceItems(const std::wstring& text) {
    std::vector<std::wstring> items;
    std::wstring item;
    bool inside = false;
    for (wchar_t c : text) {
        if (c == L'{') {
            item.clear();
            inside = true;
        } else if (c == L'}') {
            items.push_back(item);
            inside = false;
        } else if (inside) {
            item += c;
        }
    }
    return items;
}

// The palette index of an RGB member of a rule, or -1 when the member is empty or missing.
int MemberColorIndex(const std::wstring& object, const std::wstring& key) {
    std::wstring text = JsonGetMember(object, key);
    return text.empty() ? -1 : NearestColorIndex(ParseRgbText(text));
}

// The rules of StrChangeColor as two parallel lists; a rule with an empty colour is dropped.
void ReadChangeColorRules(const std::wstring& text, AcArray<int>& oldColors, AcArray<int>& newColors) {
    for (const std::wstring& item : BraceItems(text)) {
        std::wstring object = L"{" + item + L"}";
        int oldColor = MemberColorIndex(object, L"ColorOld");
        int newColor = MemberColorIndex(object, L"ColorNew");
        if (oldColor == -1 || newColor == -1) continue;
        oldColors.append(oldColor);
        newColors.append(newColor);
    }
}

}  // namespace

void ClassInterfaceData::FunChangeColor() {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    std::wstring text;
    bool open = false;  // read, and taken as true: the file cannot switch the rules off
    IniReadString(file, L"ModifyColor", L"StrChangeColor", text);
    IniReadBool(file, L"ModifyColor", L"BolOpen", open);
    AcArray<int> oldColors, newColors;
    ReadChangeColorRules(text, oldColors, newColors);
    // Each entity is looked at once, so one rule's result is not fed to a later rule.
    for (const AcDbObjectId& id : GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase())) {
        int rule = oldColors.find(EffectiveColorIndex(id));
        if (rule < 0) continue;
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) continue;
        entity->setColorIndex(static_cast<std::uint16_t>(newColors[rule]), true);
        entity->close();
    }
}
