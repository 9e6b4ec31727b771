#pragma once
// Prompts of interactive commands. Answers come first from the arguments that acedCommand
// queued, then from the host's input source (the script or the terminal), one line each.
// "^C" (and the end of the input) cancels, as Esc at the host's command line: the prompt gives
// RTCAN. An empty line is Enter: RTNONE where the prompt allows it. An answer that does not
// fit the prompt gets the host's message and the prompt again.
#include <cstddef>
#include <string>

#include "platform/db/object_id.hpp"
#include "platform/ed/resbuf.hpp"

inline constexpr int RSG_NONULL = 0x01;
inline constexpr int RSG_NOZERO = 0x02;
inline constexpr int RSG_NONEG = 0x04;

// Bits and keywords ("Color Exit", a space-separated list) for the next get call only.
int acedInitGet(int bits, const ACHAR* keywords);
// RTNORM with the keyword as listed, RTNONE on Enter (unless RSG_NONULL), RTCAN.
int acedGetKword(const ACHAR* prompt, ACHAR* result, size_t capacity = 133);
// A string; unless `cronly`, a space ends it. RTNORM (also for Enter) or RTCAN.
int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, size_t capacity = 133);
// A point "x,y" or "x,y,z", "@dx,dy[,dz]" relative to `base` when given. RTNORM, RTNONE on
// Enter, RTKWORD for a keyword of the last acedInitGet, RTCAN.
int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result);
// The keyword of the last RTKWORD.
int acedGetInput(ACHAR* result, size_t capacity = 133);
// The colour dialog on a console: asks for a colour index (0 ByBlock and 256 ByLayer only
// with `allowMetaColor`). Enter keeps `color`. True for OK, false for cancel.
bool acedSetColorDialog(int& color, bool allowMetaColor, int currentLayerColor);

// The host's side of prompts, for the editor's own prompts (selection, entity pick).
enum class Answer { kText, kCancel, kSelection };
// The next answer; `line` holds its text. A queued selection gives kSelection once its ids
// have gone to `selection`.
Answer ReadAnswer(const std::wstring& prompt, std::wstring& line, AcDbObjectIdArray* selection = nullptr);
// Parses "x,y" or "x,y,z" (and "@..." relative to `base`).
bool ParsePoint(const std::wstring& text, const ads_real* base, ads_point point);
// The keyword of the pending acedInitGet list that `answer` names, or empty.
std::wstring MatchKeyword(const std::wstring& answer, const std::wstring& keywords);
// Takes the pending acedInitGet settings (they hold for one call).
void TakeInitGet(int& bits, std::wstring& keywords);
// A message of the host to the user (stdout, own line).
void HostMessage(const std::wstring& text);
