// Reference counting as every long-lived object of the provider relies on it.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "cfimutexwrapper.h"
#include "cfismartptr.h"

using namespace qorin_pdk_4_4;

namespace {

std::atomic<int> g_destroyed{0};

struct Counted : public virtual CFiRefCount {
    ~Counted() override { ++g_destroyed; }
};

struct Derived : public Counted {};

class SmartPointer : public ::testing::Test {
protected:
    void SetUp() override { g_destroyed = 0; }
};

}  // namespace

TEST_F(SmartPointer, LastReferenceDeletesAndCopiesShare)
{
    {
        CFiSmartPtr<Counted> a(new Counted);
        EXPECT_EQ(a->refCount(), 1);
        {
            CFiSmartPtr<Counted> b(a);
            CFiSmartPtr<Counted> c;
            c = b;
            EXPECT_EQ(a->refCount(), 3);
        }
        EXPECT_EQ(a->refCount(), 1);
        EXPECT_EQ(g_destroyed, 0);
    }
    EXPECT_EQ(g_destroyed, 1);
}

TEST_F(SmartPointer, SelfAssignmentKeepsTheReference)
{
    CFiSmartPtr<Counted> a(new Counted);
    CFiSmartPtr<Counted> &alias = a;
    a = alias;
    a = a.get();
    ASSERT_FALSE(a.isNull());
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(g_destroyed, 0);

    CFiSmartPtr<Counted> b(a);
    b = a;  // same target through another pointer
    EXPECT_EQ(a->refCount(), 2);
}

TEST_F(SmartPointer, ReassignmentReleasesTheOldTarget)
{
    CFiSmartPtr<Counted> a(new Counted);
    a = new Counted;
    EXPECT_EQ(g_destroyed, 1);
    a = nullptr;
    EXPECT_EQ(g_destroyed, 2);
    EXPECT_EQ(a.detach(), -1) << "detaching an empty pointer";
}

TEST_F(SmartPointer, ConcurrentCopiesNeverLoseOrDoubleDelete)
{
    CFiSmartPtr<Counted> shared(new Counted);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&shared] {
            for (int i = 0; i < 20000; ++i) {
                CFiSmartPtr<Counted> copy(shared);
                CFiSmartPtr<Counted> again;
                again = copy;
            }
        });
    }
    for (auto &t : threads) {
        t.join();
    }
    EXPECT_EQ(shared->refCount(), 1);
    EXPECT_EQ(g_destroyed, 0);
    shared = nullptr;
    EXPECT_EQ(g_destroyed, 1);
}

TEST(MutexWrapper, HoldsOnceAndReleasesOnScopeEnd)
{
    ACE_Recursive_Thread_Mutex mutex;
    {
        CFiMutexWrapper outer(&mutex, true);
        EXPECT_TRUE(outer.isHeld());
        outer.acquire();  // already held: a second lock here would never be released
        outer.release();
        EXPECT_FALSE(outer.isHeld());
        outer.release();
    }
    {
        CFiMutexWrapper lazy(&mutex, false);
        EXPECT_FALSE(lazy.isHeld());
        CFiMutexWrapper none(nullptr, true);
        EXPECT_FALSE(none.isHeld());
    }
    // Another thread can take it once the wrapper is gone.
    bool taken = false;
    std::thread([&] {
        taken = mutex.tryacquire() == 0;
        if (taken) {
            mutex.release();
        }
    }).join();
    EXPECT_TRUE(taken);
}
