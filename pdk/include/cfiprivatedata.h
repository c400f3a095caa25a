#ifndef CFIPRIVATEDATA_H
#define CFIPRIVATEDATA_H

#include <cstdint>
#include <string>
#include <vector>

#include "cficonfigparamdatalist.h"
#include "cficonfigparaminfolist.h"
#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfismartptr.h"
#include "cfitraceable.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// What a provider knows about one node between calls. Found through the private data
// factory from the node's handle or its identifier text; providers derive their own kind.
class QORIN_PDK_API CFiPrivateData : public virtual CFiRefCount, public virtual CFiTraceable {
public:
    CFiPrivateData();
    // The identifier stays the caller's.
    CFiPrivateData(qorin_objid *id, bool isAltNode);
    // Makes an identifier of its own from name.
    CFiPrivateData(const wchar_t *name, bool isAltNode);
    ~CFiPrivateData() override;

    // Parameter lists per mode (1, or 0 for any other number), each created on first access.
    virtual bool hasConfigInfoList(int mode);
    virtual CFiConfigParamInfoList &configInfoList(int mode);
    virtual bool hasConfigDataList(int mode);
    virtual CFiConfigParamDataList &configDataList(int mode);
    // Adds the defaults of list (null: of this node's info list for mode) that no key of the
    // node's data list contains; a data list without keys takes all of them.
    virtual void addDefaultConfigParamsToDataList(int mode, CFiConfigParamInfoList *list);
    virtual void setIntent(qrn_intent intent);
    virtual qrn_intent getIntent();
    virtual void setSplitType(const char *splitType);
    virtual std::string getSplitType();
    // A null id keeps the old one.
    virtual void setSessionId(const char *sessionId);
    virtual std::string getSessionId();
    virtual std::vector<std::wstring> getHostList();
    // Appends the named hosts of the list; what was there stays.
    virtual void setHostList(qrn_host_infn *hosts);
    virtual bool getTransportable();
    virtual void setTransportable(bool transportable);
    // Nothing of a node's state is restored from the host: the blob is accepted and dropped.
    virtual int setNodeState(qrn_blob *blob);
    // Name, alternate flag and session id as three tagged lines, in a host buffer.
    virtual int getNodeState(qrn_blob *blob);
    virtual wchar_t *getObjName();
    virtual void addSubObject(qorin_objid *id);
    // Null when there are none; the array stays this object's.
    virtual qorin_objid **getSubObjectList();
    virtual int getSubObjectListLength();
    virtual void setIsAltNode(bool isAltNode);
    virtual bool getIsAltNode();
    virtual std::string getConfiguredTarget();
    virtual std::vector<std::string> getTargets();
    virtual void addTarget(std::string target);
    virtual void setConfiguredTarget(std::string &target);
    // Reads the "snapshot_resource_spec" value of mode 1, finds the entry whose source is this
    // node's disk and keeps its targets; the first becomes the configured target.
    // 0, or 6 with the reason traced. Throws CFiUdidException if the node's name is no UDID.
    virtual int selectTargetFromConfigData();

    void setOwnerGID(int32_t owner, int32_t group);
    // 3 for a null record, else 0.
    int getOwnerGID(qrn_ownergid *out) const;

private:
    qorin_objid *m_objectId;
    bool m_ownsObjectId;
    std::vector<qorin_objid *> m_subObjects;
    bool m_isAltNode;
    std::string m_sessionId;
    std::string m_splitType;
    std::string m_configuredTarget;
    std::vector<std::string> m_targets;
    bool m_transportable;
    std::vector<std::wstring> m_hostList;
    qrn_intent m_intent;
    CFiSmartPtr<CFiConfigParamInfoList> m_configInfoLists[2];
    CFiSmartPtr<CFiConfigParamDataList> m_configDataLists[2];
    int32_t m_owner;
    int32_t m_group;
};

using CFiPrivateDataPtr = CFiSmartPtr<CFiPrivateData, CFiNullAllocator<CFiPrivateData>>;

}  // namespace qorin_pdk_4_4

#endif
