#include "platform/ed/lisp.hpp"

#include <algorithm>

#include "platform/ed/ads.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/win/text.hpp"

namespace {

std::vector<LispFunction>::iterator FindByCode(void* appId, int functionCode) {
    auto& functions = Editor().lispFunctions;
    return std::find_if(functions.begin(), functions.end(), [&](const LispFunction& f) {
        return f.appId == appId && f.functionCode == functionCode;
    });
}

}  // namespace

int acedDefun(const ACHAR* name, int functionCode) {
    if (!name || !*name) return RTERROR;
    auto& functions = Editor().lispFunctions;
    std::erase_if(functions, [&](const LispFunction& f) { return EqualNoCase(f.name, name); });
    functions.push_back({name, functionCode, Editor().currentAppId, nullptr});
    return RTNORM;
}

int acedUndef(const ACHAR* name, int functionCode) {
    if (!name) return RTERROR;
    size_t removed = std::erase_if(Editor().lispFunctions, [&](const LispFunction& f) {
        return EqualNoCase(f.name, name) && f.functionCode == functionCode;
    });
    return removed ? RTNORM : RTERROR;
}

int acedGetFunCode() {
    int code = Editor().currentFunctionCode;
    return code < 0 ? RTERROR : code;
}

int acedRegFunc(int (*function)(), int functionCode) {
    auto found = FindByCode(Editor().currentAppId, functionCode);
    if (found == Editor().lispFunctions.end()) return RTERROR;
    found->function = function;
    return RTNORM;
}

int InvokeLispFunction(const ACHAR* name) {
    if (!name) return RTERROR;
    auto& functions = Editor().lispFunctions;
    auto found = std::find_if(functions.begin(), functions.end(),
                              [&](const LispFunction& f) { return EqualNoCase(f.name, name); });
    if (found == functions.end()) return RTERROR;
    LispFunction call = *found;
    int saved = Editor().currentFunctionCode;
    Editor().currentFunctionCode = call.functionCode;
    if (call.function) {
        call.function();
    } else {
        for (const LoadedModule& module : Editor().modules)
            if (module.handle == call.appId) SendModuleMessage(module, AcRx::kInvkSubrMsg);
    }
    Editor().currentFunctionCode = saved;
    return RTNORM;
}
