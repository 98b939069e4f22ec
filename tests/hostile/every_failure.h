// Runs a job again and again and lets another call fail each time, until none does any more.
//
//   SweepFailures<FailingNew>([&](auto&& whileFailing) {
//       const DataSet root = ...;                       // all calls succeed here,
//       whileFailing([&] { root->AddGroupLengths(0); });  // some fail here
//   });
//
// Running out of memory may show as std::bad_alloc where no other result is promised. Whatever
// fails, nothing may be lost: all blocks are given back when the job has ended.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <new>

#include "support/captured.h"
#include "support/failing_files.h"
#include "support/failing_new.h"
#include "support/host_system.h"

namespace pgkit_test {

// Under Wine files cost a hundred times what they do elsewhere, and many jobs write some. There a
// few of the places behind the first ones stand for all.
constexpr size_t kEveryCall = 100;
constexpr size_t kCallStride = kIsWindows ? 7 : 1;

// So that a job that never succeeds ends its test.
constexpr size_t kMaxCalls = 20000;

// Fails the calls behind the first `allowed` ones; whether there were any.
template <typename Failing, typename Job>
bool RunFailing(size_t allowed, Failures failures, Job& job) {
    bool hasFailed = false;
    job([&](auto&& operation) {
        const Failing failing(allowed, failures);
        try {
            operation();
        } catch (const std::bad_alloc&) {
        }
        hasFailed = hasFailed || failing.HasFailed();
    });
    return hasFailed;
}

template <typename Failing, typename Job>
size_t SweepFailuresAloud(Job& job) {
    size_t calls = 0;
    for (const Failures failures : {Failures::AllFurther, Failures::OneCall}) {
        for (size_t allowed = 0;; allowed += allowed < kEveryCall ? 1 : kCallStride) {
            const size_t before = BlocksInUse();
            const bool hasFailed = RunFailing<Failing>(allowed, failures, job);
            EXPECT_EQ(BlocksInUse(), before) << allowed;
            if (!hasFailed) {
                calls = std::max(calls, allowed);
                break;
            }
            if (testing::Test::HasFailure() || allowed >= kMaxCalls) {
                ADD_FAILURE() << "with call " << allowed << " failing"
                              << (failures == Failures::OneCall ? " once" : " and all others");
                return 0;
            }
        }
    }
    return calls;
}

// Returns how many calls the job makes. What it prints is shown only when it fails.
template <typename Failing, typename Job>
size_t SweepFailures(Job job) {
    size_t calls = 0;
    const Printed printed = CapturePrinted([&] { calls = SweepFailuresAloud<Failing>(job); });
    if (testing::Test::HasFailure()) std::printf("%s\n", printed.out.c_str());
    return calls;
}

}  // namespace pgkit_test
