#include "cfirefcount.h"

#include <atomic>

namespace qorin_pdk_4_4 {

namespace {

std::atomic<int32_t> g_liveObjects{0};

}  // namespace

CFiRefCount::CFiRefCount() : m_count(0)
{
    ++g_liveObjects;
}

CFiRefCount::~CFiRefCount()
{
    --g_liveObjects;
}

int32_t CFiRefCount::liveObjects()
{
    return g_liveObjects.load();
}

int32_t CFiRefCount::addRef()
{
    return ++m_count;
}

int32_t CFiRefCount::releaseRef()
{
    return --m_count;
}

int32_t CFiRefCount::refCount()
{
    return m_count;
}

}  // namespace qorin_pdk_4_4
