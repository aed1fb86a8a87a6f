#pragma once

// Alice's host on the embedded depot (RevisionHostFixture) with the plug-in's settings registered
// and its helper linked in, as the revision operations run them; a batch run's waits between
// retries are recorded instead of slept, and onWait(n) runs at the n-th.

#include "hbrevisioncontrolpropertiesmgr.h"
#include "revisioncontroluihelper.h"

#include <revisionhostfixture.h>

#include <chrono>
#include <functional>
#include <optional>

class HelperOnHost : public hbrc::test::RevisionHostFixture
{
public:  // the tests' helpers act on the fixture from outside
    void SetUp() override
    {
        RevisionHostFixture::SetUp();
        ASSERT_TRUE(host->System().RegisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName(), &settings));
        helper.SetBatchRetryWait([this](std::chrono::milliseconds wait) {
            waits.push_back(wait);
            if (onWait)
                onWait(int(waits.size()));
        });
    }
    void TearDown() override
    {
        host->System().UnregisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName());
        RevisionHostFixture::TearDown();
    }

    CHBRevisionControlPropertiesMgr settings;
    CRevisionControlUIHelper helper;
    std::vector<std::chrono::milliseconds> waits;
    std::function<void(int waitNumber)> onWait;
};
