#pragma once
// Result codes of the host's editor and utility functions.
inline constexpr int RTNONE = 5000;   // no result
inline constexpr int RTNORM = 5100;   // success; a match
inline constexpr int RTERROR = -5001;
inline constexpr int RTCAN = -5002;
inline constexpr int RTREJ = -5003;
inline constexpr int RTKWORD = -5005;
inline constexpr int RSRSLT = 1;
inline constexpr int RSERR = 3;
