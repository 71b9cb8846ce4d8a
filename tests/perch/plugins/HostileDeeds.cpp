#include "HostileDeeds.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cfenv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Deed = PF_Err (*)(const Scene& scene);

// Values that the optimiser cannot see through.
volatile int gZero = 0;
int* volatile gNowhere = nullptr;

int useUpTheStack(int depth) {
    volatile char room[4096];
    room[depth % 4096] = static_cast<char>(depth);
    return gZero == 0 ? useUpTheStack(depth + 1) + room[0] : 0;
}

const char* markPath() {
    return std::getenv("PERCH_HOSTILE_MARK");
}

// The mark has bytes from then on.
[[noreturn]] void waitForEver() {
    if (const char* const path = markPath()) {
        if (const int mark = open(path, O_WRONLY | O_APPEND); mark >= 0) dprintf(mark, "!");
    }
    for (;;)
        pause();
}

// In a session of its own, without the process that started it; its number is in the file that marks the
// deed.
[[noreturn]] void becomeDaemon() {
    setsid();
    if (fork() != 0) _exit(0);
    if (const int mark = open(markPath(), O_WRONLY); mark >= 0) dprintf(mark, "%d", getpid());
    waitForEver();
}

void waitForMark() {
    struct stat mark {};
    while (stat(markPath(), &mark) == 0 && mark.st_size == 0)
        usleep(1000);
}

struct Named {
    const char* name;
    Deed deed;
};

PF_Handle newHandle(const Scene& s, A_u_longlong size) {
    return s.in->utils->host_new_handle(size);
}

PF_Err addParameters(const Scene& s, int count) {
    PF_ParamDef definition = plainParameter(PF_Param_SLIDER);
    for (int i = 0; i < count; ++i)
        if (const PF_Err code = s.in->inter.add_param(s.in->effect_ref, -1, &definition)) return code;
    s.out->num_params = count + 1;
    return PF_Err_NONE;
}

const Named kDeeds[] = {
    // Ends of the program.
    {"read", [](const Scene&) -> PF_Err { return *gNowhere; }},
    {"write", [](const Scene&) -> PF_Err { return *gNowhere = 1; }},
    {"call", [](const Scene&) -> PF_Err { return reinterpret_cast<PF_Err (*)()>(gNowhere)(); }},
    {"bus",
     [](const Scene&) -> PF_Err {
         const int file = memfd_create("empty", 0);
         return *static_cast<volatile char*>(mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0));
     }},
    {"divide", [](const Scene&) -> PF_Err { return 1000 / gZero; }},
    {"trap", [](const Scene&) -> PF_Err { __builtin_trap(); }},
    {"abort", [](const Scene&) -> PF_Err { std::abort(); }},
    {"terminate", [](const Scene&) -> PF_Err { std::terminate(); }},
    {"overflow", [](const Scene&) -> PF_Err { return useUpTheStack(0); }},
    {"kill", [](const Scene&) -> PF_Err { return raise(SIGKILL); }},
    {"alarm",
     [](const Scene&) -> PF_Err {
         alarm(1);
         waitForEver();
     }},
    {"exit0", [](const Scene&) -> PF_Err { std::exit(0); }},
    {"exit7", [](const Scene&) -> PF_Err { std::exit(7); }},
    {"_exit0", [](const Scene&) -> PF_Err { _exit(0); }},
    {"quick_exit0", [](const Scene&) -> PF_Err { std::quick_exit(0); }},
    {"exec", [](const Scene&) -> PF_Err { return execl("/bin/true", "true", nullptr); }},
    {"signal-parent",
     [](const Scene&) -> PF_Err {
         kill(getppid(), SIGTERM);
         waitForEver();
     }},
    {"throw", [](const Scene&) -> PF_Err { throw 5; }},
    {"throw-error", [](const Scene&) -> PF_Err { throw std::runtime_error("no"); }},
    // Ends that do not come.
    {"hang", [](const Scene&) -> PF_Err { waitForEver(); }},
    {"spin",
     [](const Scene&) -> PF_Err {
         while (gZero == 0) {
         }
         return 0;
     }},
    {"stop", [](const Scene&) -> PF_Err { return raise(SIGSTOP); }},
    {"deaf",
     [](const Scene&) -> PF_Err {
         sigset_t all;
         sigfillset(&all);
         sigprocmask(SIG_BLOCK, &all, nullptr);
         waitForEver();
     }},
    {"wait",
     [](const Scene&) -> PF_Err {
         waitForMark();
         return 0;
     }},
    // What a host can go on after.
    {"error", [](const Scene&) -> PF_Err { return -1; }},
    {"cancel", [](const Scene&) -> PF_Err { return PF_Interrupt_CANCEL; }},
    {"long-message",
     [](const Scene& s) -> PF_Err {
         std::memset(s.out->return_msg, 'x', sizeof s.out->return_msg);
         return 0;
     }},
    {"escapes",
     [](const Scene& s) -> PF_Err {
         std::strcpy(s.out->return_msg,
                     "\x1B[2Jred\x1B]0;owned\a\xC2\x9B"
                     "31m");
         return 0;
     }},
    {"read-input",
     [](const Scene&) -> PF_Err {
         char byte = 0;
         return read(STDIN_FILENO, &byte, 1) == 0 ? 0 : 1;
     }},
    {"noise",
     [](const Scene&) -> PF_Err {
         std::puts("noise");
         return static_cast<PF_Err>(write(STDOUT_FILENO, "noise\n", 6) == 6 ? 0 : 1);
     }},
    {"close-outputs",
     [](const Scene&) -> PF_Err {
         close(STDOUT_FILENO);
         close(STDERR_FILENO);
         return 0;
     }},
    {"close-all-fail",
     [](const Scene&) -> PF_Err {
         close_range(0, ~0U, 0);
         return -1;
     }},
    {"fork",
     [](const Scene&) -> PF_Err {
         if (fork() == 0) waitForEver();
         return 0;
     }},
    {"daemon",
     [](const Scene&) -> PF_Err {
         if (fork() == 0) becomeDaemon();
         waitForMark();
         return 0;
     }},
    {"daemon-and-abort",
     [](const Scene&) -> PF_Err {
         if (fork() == 0) becomeDaemon();
         waitForMark();
         std::abort();
     }},
    {"end-while-writing",
     [](const Scene&) -> PF_Err {
         std::signal(SIGXFSZ, SIG_DFL);
         const rlimit few{16, 16};
         return setrlimit(RLIMIT_FSIZE, &few);
     }},
    {"two-of-us", [](const Scene&) -> PF_Err { return fork() < 0 ? 1 : 0; }},
    {"wander",
     [](const Scene&) -> PF_Err {
         if (chdir("/") != 0) return 1;
         return usleep(100000);
     }},
    {"be-interruptible-and-hang",
     [](const Scene&) -> PF_Err {
         std::signal(SIGINT, SIG_DFL);
         waitForEver();
     }},
    {"leave-group-and-hang",
     [](const Scene&) -> PF_Err {
         setpgid(0, getpgid(getppid()));
         waitForEver();
     }},
    {"folder", [](const Scene&) -> PF_Err { return chdir("/"); }},
    {"rounding", [](const Scene&) -> PF_Err { return std::fesetround(FE_UPWARD); }},
    {"handler",
     [](const Scene&) -> PF_Err {
         std::signal(SIGINT, SIG_IGN);
         return 0;
     }},
    {"table",
     [](const Scene& s) -> PF_Err {
         s.in->utils->host_new_handle = nullptr;
         return 0;
     }},
    {"leave-thread",
     [](const Scene&) -> PF_Err {
         std::thread([] { waitForEver(); }).detach();
         return 0;
     }},
    {"leave-named-thread",
     [](const Scene&) -> PF_Err {
         std::thread([] {
             pthread_setname_np(pthread_self(), "pool");
             waitForEver();
         }).detach();
         return 0;
     }},
    {"file-limit",
     [](const Scene&) -> PF_Err {
         const rlimit none{0, 0};
         return setrlimit(RLIMIT_FSIZE, &none);
     }},
    {"many-parameters", [](const Scene& s) -> PF_Err { return addParameters(s, 10000); }},
    {"unknown-parameter",
     [](const Scene& s) -> PF_Err {
         PF_ParamDef definition = plainParameter(99);
         s.out->num_params = 2;
         return s.in->inter.add_param(s.in->effect_ref, -1, &definition);
     }},
    {"long-name",
     [](const Scene& s) -> PF_Err {
         PF_ParamDef definition = plainParameter(PF_Param_SLIDER);
         std::memset(definition.name, 'n', sizeof definition.name);
         s.out->num_params = 2;
         return s.in->inter.add_param(s.in->effect_ref, -1, &definition);
     }},
    {"wrong-count",
     [](const Scene& s) -> PF_Err {
         s.out->num_params = 1000000;
         return 0;
     }},
    {"huge-output",
     [](const Scene& s) -> PF_Err {
         s.out->width = s.out->height = 2000000000;
         return 0;
     }},
    {"handle-left",
     [](const Scene& s) -> PF_Err {
         newHandle(s, 40);
         return 0;
     }},
    {"handle-overrun",
     [](const Scene& s) -> PF_Err {
         const PF_Handle handle = newHandle(s, 40);
         (*handle)[40] = 1;
         s.in->utils->host_dispose_handle(handle);
         return 0;
     }},
    {"handle-twice",
     [](const Scene& s) -> PF_Err {
         const PF_Handle handle = newHandle(s, 40);
         s.in->utils->host_dispose_handle(handle);
         s.in->utils->host_dispose_handle(handle);
         return 0;
     }},
    {"left-and-abort",
     [](const Scene& s) -> PF_Err {
         const PF_Handle handle = newHandle(s, 40);
         s.in->utils->host_dispose_handle(handle);
         s.in->utils->host_dispose_handle(handle);
         std::abort();
     }},
    {"handle-wild",
     [](const Scene& s) -> PF_Err {
         const auto wild = reinterpret_cast<PF_Handle>(std::uintptr_t{0x1234});
         s.in->utils->host_lock_handle(wild);
         s.in->utils->host_unlock_handle(wild);
         s.in->utils->host_dispose_handle(wild);
         return 0;
     }},
    {"data-wild",
     [](const Scene& s) -> PF_Err {
         s.out->sequence_data = reinterpret_cast<PF_Handle>(std::uintptr_t{0x1234});
         return 0;
     }},
    {"world-left",
     [](const Scene& s) -> PF_Err {
         PF_EffectWorld world{};
         return s.in->utils->new_world(s.in->effect_ref, 4, 4, 0, &world);
     }},
    {"world-wild",
     [](const Scene& s) -> PF_Err {
         PF_EffectWorld world{};
         world.width = world.height = 4;
         world.rowbytes = 16;
         world.data = reinterpret_cast<PF_PixelPtr>(std::uintptr_t{0x1230});
         const PF_Pixel color{};
         s.in->utils->fill(s.in->effect_ref, &color, nullptr, &world);
         return s.in->utils->dispose_world(s.in->effect_ref, &world) != 0 ? 0 : 1;
     }},
    {"world-nowhere",
     [](const Scene& s) -> PF_Err {
         auto* const wild = reinterpret_cast<PF_EffectWorld*>(std::uintptr_t{0x1230});
         s.in->utils->copy(s.in->effect_ref, wild, s.output, nullptr, nullptr);
         return s.in->utils->dispose_world(s.in->effect_ref, wild) != 0 ? 0 : 1;
     }},
    {"world-twice",
     [](const Scene& s) -> PF_Err {
         PF_EffectWorld world{};
         s.in->utils->new_world(s.in->effect_ref, 4, 4, 0, &world);
         PF_EffectWorld again = world;
         s.in->utils->dispose_world(s.in->effect_ref, &world);
         return s.in->utils->dispose_world(s.in->effect_ref, &again) != 0 ? 0 : 1;
     }},
    {"sample-wild",
     [](const Scene& s) -> PF_Err {
         PF_EffectWorld wild = *s.output;
         wild.data = reinterpret_cast<PF_PixelPtr>(std::uintptr_t{0x1230});
         PF_SampPB params{};
         params.src = &wild;
         PF_Pixel sample{};
         return s.in->utils->subpixel_sample(s.in->effect_ref, 0, 0, &params, &sample) != 0 ? 0 : 1;
     }},
    {"iterate-grown",
     [](const Scene& s) -> PF_Err {
         PF_EffectWorld larger = *s.output;
         larger.height = 100000;
         const auto leave = [](void*, A_long, A_long, PF_Pixel*, PF_Pixel*) { return PF_Err{0}; };
         return s.in->utils->iterate(s.in, 0, 1, nullptr, nullptr, nullptr, leave, &larger) != 0 ? 0 : 1;
     }},
    {"block-wild",
     [](const Scene& s) -> PF_Err {
         void* moved = nullptr;
         s.in->pica_basicP->ReallocateBlock(reinterpret_cast<void*>(std::uintptr_t{0x1230}), 8, &moved);
         return s.in->pica_basicP->FreeBlock(reinterpret_cast<void*>(std::uintptr_t{0x1230})) != 0 ? 0 : 1;
     }},
    {"parameters-on-threads",
     [](const Scene& s) -> PF_Err {
         std::vector<std::thread> threads;
         for (int i = 0; i < 4; ++i)
             threads.emplace_back([&s] { addParameters(s, 100); });
         for (std::thread& thread : threads)
             thread.join();
         s.out->num_params = 401;
         return 0;
     }},
    {"world-grown",
     [](const Scene& s) -> PF_Err {
         PF_EffectWorld grown{};
         s.in->utils->new_world(s.in->effect_ref, 4, 4, 0, &grown);
         PF_EffectWorld larger = grown;
         larger.height = 100000;
         const PF_Pixel color{1, 2, 3, 4};
         s.in->utils->fill(s.in->effect_ref, &color, nullptr, &larger);
         return s.in->utils->dispose_world(s.in->effect_ref, &grown);
     }},
    {"checkout-left",
     [](const Scene& s) -> PF_Err {
         PF_ParamDef param{};
         return s.in->inter.checkout_param(s.in->effect_ref, 0, 0, 1, 24, &param);
     }},
    {"checkout-wild",
     [](const Scene& s) -> PF_Err {
         PF_ParamDef param{};
         s.in->inter.checkout_param(s.in->effect_ref, 1000000, 0, 1, 24, &param);
         s.in->inter.checkin_param(s.in->effect_ref, &param);
         return 0;
     }},
    {"suite-null",
     [](const Scene& s) -> PF_Err {
         s.in->pica_basicP->AcquireSuite(nullptr, 1, nullptr);
         return s.in->pica_basicP->ReleaseSuite("never acquired", 1) != 0 ? 0 : 1;
     }},
    {"foreign-reference", [](const Scene& s) -> PF_Err { return s.in->inter.abort(nullptr) != 0 ? 0 : 1; }},
    {"block-left",
     [](const Scene& s) -> PF_Err {
         void* block = nullptr;
         return s.in->pica_basicP->AllocateBlock(64, &block);
     }},
    {"beyond-row",
     [](const Scene& s) -> PF_Err {
         if (s.output->rowbytes > s.output->width * 4) s.output->data[s.output->width].red ^= 1;
         return 0;
     }},
    {"write-input",
     [](const Scene& s) -> PF_Err {
         s.params[0]->u.ld.data[0].red ^= 1;
         return 0;
     }},
};

}  // namespace

PF_ParamDef plainParameter(PF_ParamType type) {
    PF_ParamDef definition{};
    definition.param_type = type;
    std::strcpy(definition.name, "Plain");
    return definition;
}

PF_Err doDeed(std::string_view name, const Scene& scene) {
    if (const char* const mark = markPath()) close(creat(mark, 0600));
    for (const Named& named : kDeeds)
        if (named.name == name) return named.deed(scene);
    std::fprintf(stderr, "there is no deed like %s\n", std::string(name).c_str());
    return 999;
}
