#pragma once

#include <hostfakes.h>

#include <gmock/gmock.h>

namespace hbrc::test {

// A FakeHost whose scripted services forget their expectations when the host goes. Expectations
// that name objects hold handles, and handles hold the manager that holds the services: without
// this the services would never be destroyed and their expectations never verified.
struct ScriptedHost : FakeHost {
    ~ScriptedHost()
    {
        ::testing::Mock::VerifyAndClear(dataControl.Get());
        ::testing::Mock::VerifyAndClear(fileVersionControl.Get());
    }
};

}  // namespace hbrc::test
