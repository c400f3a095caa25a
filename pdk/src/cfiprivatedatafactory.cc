#include "cfiprivatedatafactory.h"

#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

CFiPrivateDataFactory::CFiPrivateDataFactory() = default;

CFiPrivateDataFactory::~CFiPrivateDataFactory() = default;

std::string CFiPrivateDataFactory::keyOf(const qrn_domain *node)
{
    if (node == nullptr || node->id == nullptr || node->id->text == nullptr) {
        return std::string();
    }
    return CFiStringTool::wstr2str(node->id->text);
}

CFiPrivateDataPtr *CFiPrivateDataFactory::handleOf(const qrn_domain *node)
{
    return node != nullptr ? static_cast<CFiPrivateDataPtr *>(node->privateData) : nullptr;
}

CFiPrivateDataPtr CFiPrivateDataFactory::findInHandle(qrn_domain *node)
{
    CFiPrivateDataPtr *handle = handleOf(node);
    return handle != nullptr ? *handle : CFiPrivateDataPtr();
}

int CFiPrivateDataFactory::destroyNode(qrn_domain *node)
{
    CFiPrivateDataPtr *handle = handleOf(node);
    if (handle == nullptr) {
        return -1;
    }
    CFiPrivateDataPtr object = *handle;
    bool isAltNode = object.isNull() ? false : object->getIsAltNode();
    delete handle;
    node->privateData = nullptr;

    Map &objects = map(isAltNode);
    auto found = objects.find(keyOf(node));
    // Two references left, the map's and the local one above: no node holds it any more.
    if (found != objects.end() && found->second.get() == object.get()) {
        if (object->refCount() == 2) {
            objects.erase(found);
        }
    }
    return 0;
}

CFiPrivateDataPtr CFiPrivateDataFactory::find(const std::wstring &name, bool isAltNode)
{
    Map &objects = map(isAltNode);
    auto found = objects.find(CFiStringTool::wstr2str(name));
    return found != objects.end() ? found->second : CFiPrivateDataPtr();
}

std::vector<CFiPrivateDataPtr> CFiPrivateDataFactory::getAll(bool isAltNode)
{
    std::vector<CFiPrivateDataPtr> all;
    for (const auto &kv : map(isAltNode)) {
        all.push_back(kv.second);
    }
    return all;
}

}  // namespace qorin_pdk_4_4
