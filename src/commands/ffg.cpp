#include "commands/ffg.hpp"

#include <string>

#include "commands/ffg_steps.hpp"
#include "host/tavrik_app.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/host_commands.hpp"
#include "platform/ed/prompts.hpp"
#include "platform/ed/selection.hpp"
#include "platform/ed/sysvars.hpp"

namespace {

FfgState ffgState;

// The texts that FFG picks: a letter among the first characters, or one after a ";" (a text of
// a multi-line text behind its format codes).
resbuf* PickFilter() {
    return acutBuildList(RTDXF0, L"*text", -4, L"<OR", 1, L"*[a-A-z-Z]#*;*", 1, L"*[a-A-z-Z]*;*", 1, L"[a-A-z-Z]*", 1,
                         L"*;[a-A-z-Z]*", -4, L"OR>", 0);
}

void ReadKeepCount() {
    resbuf value{};
    if (acedGetVar(L"useri1", &value) == RTNORM) ffgState.keepCount = value.resval.rint != 0;
}

// The pick prompt; the keyword C changes the highlight colour and asks again. False when the
// user gave anything but a point on an entity.
bool PickText(ads_name picked, ads_point point) {
    for (;;) {
        acedInitGet(2, L"C");
        int status = acedEntSel(L"\n选择文字 或 [颜色(C)]:", picked, point);
        if (status != RTKWORD) return status == RTNORM;
        int color = ffgState.highlightColor;
        if (acedSetColorDialog(color, false, 256)) ffgState.highlightColor = color;
    }
}

// The first text that passes the pick filter at the point, or false.
bool TextAtPoint(const ads_point point, ads_name text) {
    resbuf* filter = PickFilter();
    ads_name found = {0, 0};
    int status = acedSSGet(nullptr, point, nullptr, filter, found);
    acutRelRb(filter);
    if (status != RTNORM) return false;
    status = acedSSName(found, 0, text);
    acedSSFree(found);
    return status == RTNORM;
}

void GraphicsFlush(bool queue) {
    AcApDocument* document = acDocManager->curDocument();
    if (!document) return;
    if (queue) document->transactionManager()->queueForGraphicsFlush();
    else document->transactionManager()->flushGraphics();
}

// Colours the found texts and keeps their ids; the set becomes the pick-first set.
AcDbObjectIdArray Highlight(const ads_name set, int color) {
    AcDbObjectIdArray ids;
    GraphicsFlush(true);
    std::int32_t length = 0;
    acedSSLength(set, &length);
    for (std::int32_t i = 0; i < length; ++i) {
        ads_name member;
        AcDbObjectId id;
        if (acedSSName(set, i, member) != RTNORM || acdbGetObjectId(id, member) != RTNORM) continue;
        ids.append(id);
        SetEntityColor(id, color);
    }
    GraphicsFlush(false);
    acedSSSetFirst(set, nullptr);
    return ids;
}

// The choice after the count: change, move, copy or erase the found texts. False when the user
// cancelled the new text, which ends the command at once.
bool ApplyChoice(const PickedText& picked, const AcDbObjectIdArray& ids, const ads_name set) {
    ACHAR keyword[133] = L"";
    acedInitGet(6, L"G M C E");
    int status = acedGetKword(L"\n输入选项 [修改(G)/移动(M)/复制(C)/删除(E)] :", keyword);
    if (status != RTNORM) return true;
    std::wstring choice = keyword;
    if (choice == L"G") {
        ACHAR answer[133] = L"";
        if (acedGetString(0, L"\n输入新字符: ", answer) != RTNORM) return false;
        for (const AcDbObjectId& id : ids) ReplaceInText(id, picked.search, answer);
    } else if (choice == L"M") {
        acedCommand(RTSTR, L".move", 0);
    } else if (choice == L"C") {
        acedCommand(RTSTR, L".copy", RTSTR, PAUSE, RTSTR, PAUSE, 0);
    } else if (choice == L"E") {
        std::int32_t length = 0;
        acedSSLength(set, &length);
        for (std::int32_t i = 0; i < length; ++i) {
            ads_name member;
            if (acedSSName(set, i, member) == RTNORM) acdbEntDel(member);
        }
    }
    return true;
}

}  // namespace

FfgState& FfgSettings() { return ffgState; }

void FfgCommand() {
    ReadKeepCount();
    ads_name chosen, text;
    ads_point point;
    if (!PickText(chosen, point) || !TextAtPoint(point, text)) return;
    PickedText picked;
    if (!ReadPickedText(text, picked)) return;
    AcGePoint3d sheetLow, sheetHigh;
    if (!FindSheet(picked.low, sheetLow, sheetHigh)) return;

    ads_name found = {0, 0};
    bool foundAny = FindSameTexts(picked.search, sheetLow, sheetHigh, found);
    acedSSAdd(text, found, found);
    std::int32_t n = 0;
    if (foundAny) acedSSLength(found, &n);
    AcDbObjectIdArray ids = Highlight(found, ffgState.highlightColor);

    if (picked.colon >= 1) n -= 1;
    AcDbObjectId count = AddCountText(picked, n);
    bool completed = ApplyChoice(picked, ids, found);
    if (!completed) {
        acedSSFree(found);
        return;
    }
    GraphicsFlush(false);
    if (!ffgState.keepCount) {
        ads_name countName;
        if (acdbGetAdsName(countName, count) == RTNORM) acdbEntDel(countName);
    }
    acedSSFree(found);
}

namespace {

ArxCommandEntry ffgRow = {kCommandGroup, L"_FFG", L"FFG", ACRX_CMD_TRANSPARENT | ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW,
                          FfgCommand, nullptr, -1};
ACED_ARXCOMMAND_ENTRY(ffgRow);

}  // namespace
