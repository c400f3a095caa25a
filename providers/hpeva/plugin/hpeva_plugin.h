#ifndef HPEVA_PLUGIN_H
#define HPEVA_PLUGIN_H

#include <memory>
#include <vector>

#include "cfimessagecatalogfactory.h"
#include "cfiplugininterposer.h"
#include "hpeva_cell.h"
#include "hpeva_clitool.h"
#include "hpeva_guard.h"
#include "hpeva_messages.h"
#include "sficredential.h"

// The EVA provider: what each host operation means on an EVA array.
class CHpEvaPlugin : public qorin_pdk_4_4::CFiPluginInterposer {
public:
    // The provider's name, one per process, and the identifiers it claims.
    static constexpr const wchar_t *PROVIDER_NAME = L"tamlin";
    static constexpr const char *UDID_PREFIX = "UDID##HP##HSV##";

    CHpEvaPlugin();
    ~CHpEvaPlugin() override;

    int getProviderInfo(qrn_provider_list **out) override;
    int enumerateFims(qrn_fim_list **out) override;

    // Start-up: init needs no array (catalogs, methods, SSSU's place, credentials);
    // delayedInit checks SSSU's version and finds the storage cells.
    int init() override;
    int delayedInit() override;
    void fini() override;

    int enumerateNodes(qrn_node_list **out, int *count, int flags, wchar_t *filter) override;
    int enumerateEnclosures(qrn_enclosure_node_list **out, int *count, wchar_t *filter) override;
    int enumerateHostNodes(qrn_host_node_list **out, int *count, wchar_t *filter) override;

    // The kit's parameter exchange, inside the catch ladder; a document that can't be read
    // is reported with its place.
    int config(qrn_domain *node, int op, char *sessionId, qrn_confspec *spec) override;

    // Restores each primary from its secondary (snapclone), pairs by index: starts every pair
    // with flags 0, 0x1 or 0x100, writes 16 into a started pair's status element, then waits
    // for each copy in turn. A refused or failing pair ends the call; pairs started before it
    // stay started and unawaited.
    int restore(qorin_objid **primaries, qorin_objid **secondaries, int32_t count, wchar_t *, wchar_t *, int32_t flags,
                int32_t *status) override;

    // Selection: reads each disk of the list anew, keeps it (and for a DR group snapclone the
    // group) in the node's private data for make, and checks it against its method. A failed
    // check pushes its message and gives QRN_ERR_NOT_PROVIDED, on which the entry still records
    // the list in the session: the message is what tells the host.
    int select(char *sessionId, qrn_splitnode **nodes, int count) override;
    // Creation: one copy per pending node of the session by its method, each target's UDID
    // written into the session; a DR group suspended once for its copies; then a short wait for
    // new snapclones to start. Nothing made is taken back on failure.
    int makeSnapshots(qorin_pdk_4_4::CFiSessionPtr &session) override;

    // Import and deport: presents the node's disk to a host on a LUN, or takes it away; the
    // interposer's forms and deportTree come here.
    int importNode(std::wstring node, std::vector<std::wstring> hosts, bool transportable, bool singleHost, bool deport,
                   int mode) override;
    int deportTree(qrn_domain *node, qrn_domain *other, qrn_accessnode *access) override;
    // Disposal: disposition 1 deletes the copy, its presentations first.
    int dispose(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_disposition disposition) override;
    // Object controls for command-line hosts: "disk_info" (input udid) tells a disk's name,
    // size, creation time and presentations; "leftovers" the same of every disk of the
    // reachable cells whose name follows the provider's copy naming.
    int32_t objctl(std::wstring name, qorin_pdk_4_4::CFiObjctlArgs &args) override;

protected:
    // The catch ladder for one operation of this class; line is the guard's call site.
    CHpEvaGuard guard(const char *operation, int line, bool initialisation = false) const;
    // The configured SSSU for one operation, running on this plug-in's env().
    CHpEvaCliTool newCliTool() const;
    // The text of the node's identifier; empty for a null node, identifier or text.
    static std::wstring nodeName(const qrn_domain *node);

    // The Command View servers to use.
    std::vector<qorin_pdk_4_4::SFiCredential> credentials;
    // The storage cells found by delayedInit; read without a lock afterwards.
    std::vector<SHpEvaCell> cells;
    CHpEvaCliTool cliTool;
    // Seconds to wait after an unmask; 0 unless configured.
    uint32_t postUnmaskWait = 0;

private:
    // The array's path of the host an import or deport works on: the first of hosts, else
    // this machine. QRN_ERR_INVALID_ARGUMENT, with unknown pushed (or the key for this
    // machine when it has no name), when the disk's cell doesn't know the host.
    int findArrayHost(const CHpEvaCliTool &tool, const SHpEvaVdisk &disk, const std::vector<std::wstring> &hosts,
                      const SHpEvaMessageKey<3> &unknown, std::string &arrayHost);
    void waitAfterUnmask();

    // Registered with the catalog manager, which doesn't own it.
    std::unique_ptr<qorin_pdk_4_4::CFiMessageCatalogFactory> m_catalogFactory;
};

#endif
