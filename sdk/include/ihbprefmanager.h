#pragma once

#include <kel4/sdkglobal.h>

#include <string>

/// The host's preference manager (the singleton "PrefManager"). Writes take a trailing flag: 1
/// stores the value persistently, 0 keeps it for this session only. Reads take 0 (a plain lookup).
/// A read of a missing key writes the default into the out value and returns true; a read of a key
/// holding another type returns false and leaves the out value alone.
class KEL_INTERFACE IHBPrefManager
{
public:
    virtual ~IHBPrefManager() = default;
    static const char* GetSingletonName() { return "PrefManager"; }

    virtual bool SetBoolPref(const std::string& key, bool value, int persistent) = 0;
    virtual bool SetStringPref(const std::string& key, const std::string& value, int persistent) = 0;
    virtual bool SetIntPref(const std::string& key, int value, int persistent) = 0;
    virtual bool GetBoolPref(const std::string& key, bool defaultValue, bool& value, int flags) = 0;
    virtual bool GetStringPref(const std::string& key, const char* defaultValue, std::string& value, int flags) = 0;
    virtual bool GetIntPref(const std::string& key, int defaultValue, int& value, int flags) = 0;
};
