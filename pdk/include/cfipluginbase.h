#ifndef CFIPLUGINBASE_H
#define CFIPLUGINBASE_H

#include <cstdint>
#include <string>

#include <ace/Recursive_Thread_Mutex.h>

#include "cficonfigparaminfolist.h"
#include "cfienv.h"
#include "cfierrormanager.h"
#include "cfiexport.h"
#include "cfimessagecatalogmanager.h"
#include "cfiprivatedatafactory.h"
#include "cfirefcount.h"
#include "cfismartptr.h"
#include "cfitraceable.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

class CFiObjctlArgs;
class CFiPrivateDataManager;
class CFiSession;
class CFiSessionManager;

using CFiCatalogManagerPtr =
    CFiSmartPtr<CFiMessageCatalogManager, CFiContextSingletonAllocator<CFiMessageCatalogManager>>;
using CFiPrivateDataManagerPtr =
    CFiSmartPtr<CFiPrivateDataManager, CFiContextSingletonAllocator<CFiPrivateDataManager>>;
using CFiSessionManagerPtr = CFiSmartPtr<CFiSessionManager, CFiContextSingletonAllocator<CFiSessionManager>>;
using CFiSessionPtr = CFiSmartPtr<CFiSession, CFiNullAllocator<CFiSession>>;

// Base of every provider of the kit: one virtual operation per entry of the table, each
// with a harmless default, so that a provider overrides only what it implements. Results:
// QRN_OK, QRN_ERR_INVALID_ARGUMENT, QRN_ERR_NOT_PROVIDED (not in this form).
class QORIN_PDK_API CFiPluginBase : public virtual CFiRefCount, public virtual CFiTraceable {
public:
    ~CFiPluginBase() override;

    virtual int delayedInit();
    virtual CFiConfigParamInfoList &globalConfigInfoList(int mode, bool group);
    virtual int init();
    virtual void fini();
    virtual int claim(qorin_objid *id, qorin_objid ***subordinates, int *count);
    virtual int supportsFiType(qrn_domain *node, char *fiType);
    virtual int deportTree(qrn_domain *node, qrn_domain *other, qrn_accessnode *access);
    virtual int importTreeNode(qrn_domain *node, qorin_objid **a, qorin_objid **b, int count, qorin_objid **out);
    virtual int initNode(qrn_domain *node, qrn_domain **parents, int count, qorin_objid *id);
    virtual int config(qrn_domain *node, int op, char *sessionId, qrn_confspec *spec);
    virtual int initAltNode(qrn_domain *source, qrn_domain *other, qrn_domain *target, bool remote);
    virtual int reAccessTmpObj(qrn_domain *node, qorin_objid *id, char *splitType, qrn_domain *other, char *sessionId,
                               qrn_intent intent);
    virtual int reAccessAltNode(qrn_domain *node, qorin_objid *id, qorin_objid *altId, char *sessionId,
                                qorin_objid **list, qorin_objid **list2, int count, qrn_intent intent);
    virtual void deInitNode(qrn_domain *node);
    virtual int dispose(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_disposition disposition);
    virtual int online(qrn_domain *node, qrn_domain *other, int flag, qrn_disposition disposition);
    virtual int subobjList(qrn_domain *node, qorin_objid ***out, int *count);
    virtual int errMsg(int code, const wchar_t **text);
    virtual int buildAltTree(qrn_domain *node, char *type, qorin_objid **a, qorin_objid **b, int count,
                             qorin_objid **out);
    virtual int quiesce(qrn_quiescenode **list, int count, char *type);
    virtual void unquiesce(qrn_quiescenode **list, int count);
    virtual int make(char *sessionId, qrn_splitnode **list, int count, qorin_objid ***out, int *outCount);
    virtual int makeSnapshots(CFiSessionPtr &session);
    virtual int prepare(char *sessionId, qrn_splitnode **list, int count, int flag);
    virtual int prepareSnapshots(CFiSessionPtr &session);
    virtual int select(char *sessionId, qrn_splitnode **list, int count);
    virtual int selectSnapshots(CFiSessionPtr &session);
    virtual int isReady(char *sessionId, qrn_splitnode **list, int count);
    virtual int cacheDisable(qrn_domain *node, int flag);
    virtual void cacheEnable(qrn_domain *node, int flag);
    virtual void cacheFlush(qrn_domain *node, int flag);
    virtual qrn_interpose interpose(qrn_domain *node, qorin_objid **outId, qorin_objid ***outGroups, int *outCount);
    virtual int getAttr(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_attributes *attributes);
    virtual int getProviderInfo(qrn_provider_list **out);
    virtual int enumerateNodes(qrn_node_list **out, int *count, int flags, wchar_t *filter);
    virtual int enumerateAssociations(qrn_assoc_list **out);
    virtual int enumerateGroupNodes(qrn_group_node_list **out);
    virtual int enumerateFims(qrn_fim_list **out);
    virtual int isValidNodeAssociation(qrn_assoc *association, int *valid);
    virtual int getAssociatedNodes(qrn_node *node, qrn_node_list **out);
    virtual int checkNodeExistence(qrn_domain *node, int *exists);
    virtual int32_t objctl(std::wstring name, CFiObjctlArgs &args);
    virtual int processProviderState(qrn_domain *node, qrn_blob *blob, qrn_op_providerstate op);
    virtual int getLastError(qrn_msg_info **out);
    virtual int delLastError(qrn_msg_info **info);
    virtual int getLocaleMessage(int *unused, qrn_msg_info *info, const char *language, wchar_t **out);
    virtual int delLocaleMessage(wchar_t **text);
    virtual int enableAccess(qrn_node_subobj_list *list, int32_t a, int b, int c);
    virtual int disableAccess(qrn_node_subobj_list *list, int32_t a);
    virtual int restore(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, wchar_t *b,
                        int32_t flags, int32_t *status);
    virtual int resync(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, wchar_t *b,
                       int32_t flags, int32_t *status);
    virtual int getStatus(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, int32_t flags,
                          int32_t *status);
    virtual int prePrepare(qrn_domain *node);
    virtual int queryValidSecondaries(wchar_t *name, qorin_objid ***out, int32_t *count);
    virtual int resourceStatus(qorin_objid *id, int32_t a, int32_t *b, qrn_msg_info **info);
    virtual int revisitPluginNodes(qrn_pgn_node_list *list);
    virtual int verifyQSCombos(qrn_splitnode **list, int count);
    virtual int setImportOptions(qrn_splitnode **list, int count, qrn_host_infn *hosts, int transportable,
                                 void *opaque);
    virtual int startBuildAltTree(qrn_domain *node, qorin_objid **id, void *opaque);
    virtual int translateResourceNames(wchar_t **names, int count, wchar_t **out);
    virtual int enumerateEnclosures(qrn_enclosure_node_list **out, int *count, wchar_t *filter);
    virtual int importResource(wchar_t **out, wchar_t *resource, wchar_t *host, wchar_t *other, int flags,
                               wchar_t **out2, wchar_t *other2);
    virtual int format(wchar_t **a, int b, wchar_t *c, wchar_t *d, wchar_t *e, int f, wchar_t ***g, int *h);
    virtual int enumerateHostNodes(qrn_host_node_list **out, int *count, wchar_t *filter);
    virtual int onlineResource(wchar_t **a, int b, wchar_t *c, wchar_t *d, wchar_t *e, wchar_t *f, int g, wchar_t ***h,
                               int *i);
    virtual int deportResource(wchar_t *resource, wchar_t *host, wchar_t *other, wchar_t *other2, int flags);
    virtual int isParentPgn(wchar_t *name, int *isParent, int flag);
    virtual int unformat(wchar_t **a, int b, int c);
    virtual int preDeportResource(wchar_t *resource, int flags, wchar_t *host);
    virtual int refreshTree(qrn_domain *node, int a, int b, qrn_resource *resource, int c, int *d, void *e, int f);
    virtual int getBackupset(qrn_domain *node, int a, wchar_t **b, int c, qrn_bkupset *set);
    virtual int getAppStatus(qrn_domain *node, int a, void *b);
    virtual int setOpStatus(qrn_domain *node, int status);
    virtual int setCompStatus(qrn_domain *node, int a, wchar_t *b, int c);
    virtual int setRestorepaths(qrn_domain *node, wchar_t *paths, int count);

    void setProviderName(const std::wstring &name);
    std::wstring getProviderName() const;
    void setMessageIndexOffset(int32_t offset);
    int32_t getMessageIndexOffset() const { return m_messageIndexOffset; }
    void registerErrorManager(const CFiErrorManagerPtr &manager);
    void registerCatalogManager(const CFiCatalogManagerPtr &manager);
    void registerPrivateDataManager(const CFiPrivateDataManagerPtr &manager);
    void registerSessionManager(const CFiSessionManagerPtr &manager);
    ACE_Recursive_Thread_Mutex *getMutex();
    // Runs delayedInit once per object, under the plug-in's mutex; later calls give 0.
    int invokeDelayedInit();
    // Setting is for good; the flag is read without a lock.
    static bool isShuttingDown(bool set);
    void addDefaultConfigInfoParam(CFiConfigParamInfo &param, int mode, bool group);
    int setOwnerIds(std::string owner, int32_t uid, int32_t gid);

    // Where operations sleep, read the clock and start programs: the real env unless a
    // test gives another, which must outlive the plug-in.
    CFiEnv *env() const { return m_env; }
    void setEnv(CFiEnv *env) { m_env = env != nullptr ? env : CFiEnv::defaultEnv(); }

protected:
    CFiPluginBase();

    // The factory of the node's private data; empty before a manager is registered.
    CFiPrivateDataFactoryPtr privateDataFactory() const;
    // Frees a method list that initNode built: both strings, both records and each entry.
    static void freeMethodList(qrn_domain *node);

    std::wstring m_providerName;
    ACE_Recursive_Thread_Mutex m_mutex;
    CFiErrorManagerPtr m_errorManager;
    CFiCatalogManagerPtr m_catalogManager;
    CFiPrivateDataManagerPtr m_privateDataManager;
    CFiSessionManagerPtr m_sessionManager;
    CFiConfigParamInfoList m_nodeParamLists[2];
    CFiConfigParamInfoList m_groupParamLists[2];
    int32_t m_messageIndexOffset;
    bool m_delayedInitDone;
    CFiEnv *m_env = CFiEnv::defaultEnv();
};

}  // namespace qorin_pdk_4_4

#endif
