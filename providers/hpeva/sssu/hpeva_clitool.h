#ifndef HPEVA_CLITOOL_H
#define HPEVA_CLITOOL_H

#include <list>
#include <string>
#include <vector>

#include <ace/SString.h>

#include "cfienv.h"
#include "cfioutputlines.h"
#include "hpeva_cell.h"
#include "hpeva_drgroup.h"
#include "hpeva_host.h"
#include "hpeva_restoresettings.h"
#include "hpeva_vdisk.h"
#include "sficredential.h"

// Where SSSU lies, and the one way the provider runs it. A plain value: every operation
// works on its own copy. The directory ends in "/" because the two are joined as they are.
//
// Array operations are members too; each writes one CHpEvaCommandTempFile and runs it
// through execSSSU.
class CHpEvaCliTool {
public:
    // Longest silence of SSSU that nearly every operation accepts, in seconds.
    static const int DEFAULT_TIMEOUT = 600;
    // Key of the machine-wide lock that lets one SSSU run at a time ("qorin-sem-1002").
    static const int SEMAPHORE_KEY = 1002;
    static const int MAX_RUNS = 3;
    // Seconds between two runs of one execSSSU.
    static const int RETRY_WAIT = 1;
    // The most memory the output of one run may take, in MiB: twenty times the listing of
    // 10,000 disks, so only a runaway SSSU reaches it.
    static const uint32_t DEFAULT_OUTPUT_LIMIT_MB = 512;

    CHpEvaCliTool();
    CHpEvaCliTool(const ACE_WString &directory, const ACE_WString &fileName);

    const ACE_WString &getFileName() const { return m_fileName; }
    const ACE_WString &getDirectory() const { return m_directory; }
    void setFileName(const ACE_WString &fileName) { m_fileName = fileName; }
    void setDirectory(const ACE_WString &directory) { m_directory = directory; }
    // Directory and file name joined.
    ACE_WString getPath() const;
    // Limit of one run's output in MiB (CFiExecPipeBase::setOutputLimit); 0 keeps the default.
    uint32_t getOutputLimitMb() const { return m_outputLimitMb; }
    void setOutputLimitMb(uint32_t megabytes)
    {
        m_outputLimitMb = megabytes != 0 ? megabytes : DEFAULT_OUTPUT_LIMIT_MB;
    }

    // Where runs sleep, start SSSU and take the machine-wide lock: the real env unless a
    // test gives another, which must outlive every copy of the tool.
    qorin_pdk_4_4::CFiEnv *env() const { return m_env; }
    void setEnv(qorin_pdk_4_4::CFiEnv *env) { m_env = env != nullptr ? env : qorin_pdk_4_4::CFiEnv::defaultEnv(); }

    // Runs SSSU with arguments (CHpEvaCommandTempFile::getCommandFileOption) under the
    // machine-wide lock; a run that couldn't reach the Command View server is repeated after
    // a second's sleep, up to three runs in all (and three sleeps). On return lines holds the
    // last run's output with passwords masked. Throws CHpEvaCliException for no output (with
    // the reason: not started, exit status), a run stopped after timeout seconds of silence,
    // an unexpected "Error: " line or output beyond the limit (CLI_COMMAND_FAILED, the run
    // stopped), and EFiExecPipe for a failed run whose output shows no error. lines keeps
    // what was read. Listings, which may run to many megabytes, take the lines as one text.
    void execSSSU(const ACE_WString &arguments, std::vector<std::string> &lines, int timeout) const;
    void execSSSU(const ACE_WString &arguments, qorin_pdk_4_4::CFiOutputLines &lines, int timeout) const;

    // Cuts the output of an XML listing down to one document: the objects between the first
    // "<object>" and the last "</object>" line, wrapped in one root. Lines are blanked, not
    // removed.
    static void massageOutput(std::vector<std::string> &lines);
    static void massageOutput(qorin_pdk_4_4::CFiOutputLines &lines);

    // Beginnings of SSSU version lines accepted beside the built-in table ("Version: 9."), from
    // the setting ACCEPTED_VERSIONS of CLI_TOOL_INFO.
    const std::vector<std::string> &getAcceptedVersions() const { return m_acceptedVersions; }
    void setAcceptedVersions(const std::vector<std::string> &versions) { m_acceptedVersions = versions; }

    // Discovery (hpeva_clitool_discovery.cc). Results: QRN_OK; QRN_ERR_FAILED no host entry
    // matches; QRN_ERR_NO_SUCH_CELL no cell has the WWN; QRN_ERR_INIT_FAILED no supported SSSU
    // version, and found (if given) then holds the line that tells SSSU's version, or else
    // the first line it printed.
    int checkVersion(std::string *found = nullptr) const;
    // Each cell once by WWN, with the first server's credential. Throws nothing: a server
    // that fails is reported or traced and skipped.
    std::vector<SHpEvaCell> enumerateCells(const std::vector<qorin_pdk_4_4::SFiCredential> &credentials) const;
    // Fills every cell field from SSSU; the credential stays.
    void getCellDetail(SHpEvaCell &cell) const;
    static int findCell(std::string wwn, const std::vector<SHpEvaCell> &cells, SHpEvaCell &cell);
    // The trimmed lines behind marker, up to the next prompt.
    std::vector<std::string> enumerate(const SHpEvaCell &cell, const ACE_WString &command, const char *marker) const;
    std::vector<std::string> listHosts(const SHpEvaCell &cell) const;
    std::vector<std::string> listVirtualDisks(const SHpEvaCell &cell) const;
    void getHostInfoList(const SHpEvaCell &cell, std::vector<SHpEvaHost> &hosts) const;
    // The array's full host path of a machine (null: this one).
    int getSSSUHostName(const SHpEvaCell &cell, std::string &name, const char *hostName) const;
    std::vector<SHpEvaVdisk> getLocalVdiskList(const SHpEvaCell &cell, const char *hostName) const;

    // Virtual disks, LUNs and DR groups (hpeva_clitool_disks.cc). A disk passed in serves as
    // its own cell.
    SHpEvaVdisk findVirtualDisk(const std::vector<SHpEvaCell> &cells, std::string cellWwn,
                                const std::string &wwn) const;
    SHpEvaVdisk findVirtualDisk(const SHpEvaCell &cell, const std::string &wwn) const;
    void getVirtualDiskList(const SHpEvaCell &cell, std::list<SHpEvaVdisk> &disks) const;
    SHpEvaVdisk getVirtualDiskDetail(const SHpEvaCell &cell, std::string name) const;
    void refresh(const SHpEvaCell &cell) const;
    void addLun(const SHpEvaCell &cell, const std::string &disk, const std::string &host, unsigned int lun) const;
    // All presentations of disk, or only the one to host; one script either way.
    void deleteLuns(const SHpEvaVdisk &disk, const char *host) const;
    void deleteVirtualDisk(const SHpEvaVdisk &disk) const;
    void suspendDrGroup(const SHpEvaCell &cell, std::string group) const;
    void resumeDrGroup(const SHpEvaCell &cell, std::string group) const;
    SHpEvaDrGroup getDRGroupDetail(const SHpEvaCell &cell, std::string group) const;

    // Restore (hpeva_clitool_restore.cc): primary, an active disk, gets the content of the
    // snapclone secondary. Both records as findVirtualDisk gives them; the script runs in the
    // secondary's login and cell. restore removes the primary's presentations, makes it a
    // container, starts the copy into it and presents it again on its old LUNs; the copy
    // goes on after the return. restoreSwapBased trades the two disks' world wide LUN names
    // and family names instead and presents each side again; nothing is copied.
    void restore(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary,
                 const SHpEvaRestoreSettings &settings = SHpEvaRestoreSettings()) const;
    void restoreSwapBased(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary) const;

    // Snapshots and snapclones (hpeva_clitool_snapshots.cc), made from an active disk on a
    // name free on its cell; target is the new disk as read back. Results: QRN_OK;
    // QRN_ERR_INVALID_ARGUMENT (a snapshot or vsnap of a source that isn't active, or an
    // unknown allocation or redundancy) or QRN_ERR_FAILED (a snapclone of such a source), both
    // with nothing sent to the array.
    enum Allocation { ALLOCATION_DEMAND = 0, ALLOCATION_FULLY = 1 };
    enum Redundancy { REDUNDANCY_VRAID0 = 0, REDUNDANCY_VRAID1 = 1, REDUNDANCY_VRAID5 = 2 };
    // name is the copy's short name for SSSU, path its expected full path: inside the source's
    // family when inFamily isn't 0, else beside it.
    int getNextSnapshotName(const SHpEvaVdisk &source, int inFamily, const std::string &suffix, std::string &name,
                            std::string &path) const;
    int createVSnap(const SHpEvaVdisk &source, SHpEvaVdisk &target, const std::string &suffix, int allocation,
                    int redundancy) const;
    int createSnapClone(const SHpEvaVdisk &source, SHpEvaVdisk &target, const std::string &suffix) const;

private:
    // Throws the failure of a run whose output passed the limit.
    [[noreturn]] void stopFlood(const ACE_WString &command, const qorin_pdk_4_4::CFiOutputLines &lines) const;

    ACE_WString m_fileName;
    ACE_WString m_directory;
    std::vector<std::string> m_acceptedVersions;
    uint32_t m_outputLimitMb = DEFAULT_OUTPUT_LIMIT_MB;
    qorin_pdk_4_4::CFiEnv *m_env = qorin_pdk_4_4::CFiEnv::defaultEnv();
};

#endif
