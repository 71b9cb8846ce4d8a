// The host behind an Effect: what the callbacks answer from, and how a command is sent.
// Callbacks get at it through Host::current(), because most of them carry nothing that would name it.
//
// Commands are sent, and `call` and `description` written, on the thread that made the host. While a command
// is under way, workers may ask isCancelled(), isDuring() and the like, count their calls, and use the ledger
// and the tables, which lock.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "Call.h"
#include "CallbackTables.h"
#include "Checkouts.h"
#include "EffectDescription.h"
#include "Handles.h"
#include "HostOptions.h"
#include "Ledger.h"
#include "Memory.h"
#include "ProcessGuard.h"
#include "ProjectReferences.h"
#include "SuiteLedger.h"
#include "WorkerPool.h"
#include "WorldLedger.h"

namespace perch {

class Host {
public:
    // `library` keeps the effect's code loaded, null for an effect of this process; `watch` was made before
    // it was loaded. Throws Error while another host exists.
    Host(PF_EntryPoint entryPoint, EffectDescription description, HostOptions options,
         std::shared_ptr<void> library, const CallbackTables& tables, ProcessWatch watch);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // The one host of the process; null when there is none.
    static Host* current();

    // Sends the command, carries the data over, and checks what had to be given back by its end. What the
    // effect answers is in call.code and is not thrown. Throws Error on any other thread.
    void send(Call& call);
    // Throws what the effect answered, or passes its message on.
    void throwIfFailed(const Call& call);

    // Notes a failed tear-down, which throws nothing: the caller could do nothing about it.
    void reportFailedTearDown(const Call& call);

    // GLOBAL_SETUP and PARAMS_SETUP. Throws as throwIfFailed does.
    void setUp();
    // GLOBAL_SETDOWN after a set-up, once; then the leaks are noted. Throws EffectBroke where the effect let
    // an exception out in a command whose failure nobody was told of.
    void close();
    // Calls a function of the effect's that no command stands for, by its name.
    void callOutside(const char* function, const std::function<void()>& body);

    PF_ProgPtr token() { return reinterpret_cast<PF_ProgPtr>(this); }
    bool isMainThread() const { return std::this_thread::get_id() == mainThread; }
    bool isDuring(PF_Cmd command) const { return call != nullptr && call->command == command; }
    // From frame set-up to frame set-down.
    bool isDuringFrame() const;
    bool isCancelled() const;
    // Notes why a callback is refused, and tells it with the effect's error if that follows.
    void refuse(std::string_view callback, const std::string& why);
    // Whether a callback of the command's thread has been refused since the last call of forgetRefusal.
    bool hasRefused() const;
    void forgetRefusal();
    // Passes the share of the command that is done on to the caller of the render, on its thread alone.
    void showProgress(double fraction) const;
    // Has PARAMS_SETUP fail for this reason, also where the effect does not look at what add_param answers.
    void refuseParameters(const std::string& why) { parameterFlaw = why; }
    // The code by which the n-th call is to fail, or 0.
    PF_Err countCall(std::string_view callback);

private:
    // The effect's code; first, so that it stays loaded until the workers have ended: what an effect keeps
    // per thread is destroyed by its own code when the thread ends.
    const std::shared_ptr<void> library;

public:
    const HostOptions options;
    EffectDescription description;
    Ledger ledger;
    HandleTable handles{ledger};
    MemoryBlocks memory{ledger};
    WorldLedger worlds{ledger};
    Checkouts checkouts{ledger};
    SuiteLedger suites{ledger};
    ProjectReferences references{ledger};
    WorkerPool pool;
    Call* call = nullptr;                // under way, or null
    std::atomic<bool> hasThrown{false};  // an exception left a function of the effect during the command

private:
    PF_InData makeInData(const Call& call);
    void enter(Call& call, PF_InData& in);
    void carryOver(Call& call, const PF_InData& given, const PF_InData& in);
    void comparePropertyList();
    std::string describeException() const;
    void disposeDeclaredValues();

    const PF_EntryPoint entryPoint;
    const CallbackTables tables;
    ProcessGuard process;
    const std::thread::id mainThread = std::this_thread::get_id();
    PF_Handle globalData = nullptr;
    bool isSetUp = false;
    std::string parameterFlaw;   // why the parameters are refused; empty where they are not
    std::string untoldBreakage;  // a sentence, of a command whose failure nobody waits for
    std::mutex callCountMutex;
    std::map<std::string, int, std::less<>> callCounts;
};

}  // namespace perch
