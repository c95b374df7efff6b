/* foreign_host LIBRARY PLUGIN FUNCTION_COUNT [COMMAND...]: a host that knows nothing of this project's
 * headers starts the plug-in, reads its strings, calls its functions, sends it idle time and shuts it down.
 * With COMMAND, it registers an update script, runs the command, which changes the address book, and waits
 * for the script. Prints what went as it should; ends with status 1 at the first thing that did not.
 *
 * Own: the call structure and all signatures (interface.h), the registry of functions, the loop that calls
 * them. Not own: LIBRARY, libFMWrapper.so, whose functions the plug-in calls for texts, values and vectors.
 * How that library hands registrations on to a host is no part of the plug-in interface: a host by another
 * maker has a library of its own. Here it is FM_Host_SetHooks with the structures below.
 */
#define _GNU_SOURCE
#include "tests/foreign_host/interface.h"

#include <dlfcn.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

/* --- What libFMWrapper.so hands on. */

typedef struct {
    const void* plugin; /* a QuadChar */
    int16_t id;
    const void* name; /* texts */
    const void* prototype;
    const void* description; /* may be null */
    int16_t minArguments;
    int16_t maxArguments;
    uint32_t flags;
    Handler function;
} Wanted;

typedef struct {
    void* context;
    int16_t (*registerFunction)(void* context, const Wanted* wanted);
    int16_t (*unregisterFunction)(void* context, const void* plugin, int16_t id);
    int16_t (*registerScriptStep)(void* context, const void* wanted);
    int16_t (*unregisterScriptStep)(void* context, const void* plugin, int16_t id);
    int16_t (*evaluate)(void* context, const void* environment, const void* expression, void* result);
    uint64_t sessionId;
    uint64_t fileId;
} Hooks;

#define DECLARE(result, name, arguments) static result(*name) arguments;
LIBRARY_FUNCTIONS(DECLARE)
static void (*FM_Host_SetHooks)(const Hooks* hooks);

/* --- Checks. */

static void fail(const char* what) {
    fprintf(stderr, "foreign_host: failed: %s\n", what);
    exit(1);
}
#define CHECK(condition)                                                                                     \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            fprintf(stderr, "foreign_host.c:%d: ", __LINE__);                                                \
            fail(#condition);                                                                                \
        }                                                                                                    \
    } while (0)

static Block block = {1, 0};
/* After each call of the library: it must not have reported a failure. */
static void checkBlock(void) {
    CHECK(block.version == 1 && block.code == 0);
}

/* --- Texts. */

static char* bytesOf(const void* text) {
    const uint32_t units = FM_Text_GetSize(text, &block);
    const uint32_t capacity = 3 * units + 1; /* UTF-8 takes at most three bytes a unit */
    char* bytes = calloc(1, capacity);
    FM_Text_GetBytes(text, bytes, capacity, 0, units, kUtf8, &block);
    checkBlock();
    return bytes;
}

static void* textOf(const char* bytes) {
    void* text = FM_Text_Constructor1(&block);
    FM_Text_Assign(text, bytes, kUtf8, &block);
    checkBlock();
    return text;
}

/* --- The registry. */

typedef struct {
    bool isRegistered;
    char* name; /* up to the first blank or parenthesis */
    int16_t minArguments;
    int16_t maxArguments;
    Handler code;
} Function;
enum { kMostFunctions = 256 };
static Function functions[kMostFunctions];
static int registered = 0;
static const uint32_t kPlugin = 'K' << 24 | 'O' << 16 | 'R' << 8 | 'U';

static int16_t registerFunction(void* context, const Wanted* wanted) {
    CHECK(context == functions);
    CHECK(FM_QuadChar_GetMacType(wanted->plugin, &block) == kPlugin);
    CHECK(wanted->id >= 0 && wanted->id < kMostFunctions && !functions[wanted->id].isRegistered);
    CHECK(wanted->minArguments >= 0 && wanted->minArguments <= wanted->maxArguments);
    CHECK(wanted->flags == 0xFF01);
    char* name = bytesOf(wanted->name);
    char* prototype = bytesOf(wanted->prototype);
    name[strcspn(name, " (")] = '\0';
    CHECK(strncmp(name, "KORU_", 5) == 0);
    CHECK(strncmp(prototype, name, strlen(name)) == 0);
    free(prototype);
    functions[wanted->id] =
        (Function){true, name, wanted->minArguments, wanted->maxArguments, wanted->function};
    ++registered;
    return 0;
}

static int16_t unregisterFunction(void* context, const void* plugin, int16_t id) {
    CHECK(context == functions);
    CHECK(FM_QuadChar_GetMacType(plugin, &block) == kPlugin);
    if (id < 0 || id >= kMostFunctions || !functions[id].isRegistered) {
        return 1;
    }
    functions[id].isRegistered = false;
    free(functions[id].name);
    --registered;
    return 0;
}

/* --- Messages. The structure ends where the memory ends: who reads or writes behind it crashes. */

static char* call;
static void (*entry)(void*);
static char scriptFile[64];
static char startedScript[64];
static char scriptParameter[256];

static int16_t startScript(const void* file, const void* script, uint8_t control, const void* parameter) {
    CHECK(control <= 3);
    char* texts[] = {bytesOf(file), bytesOf(script), bytesOf(FM_Data_GetAsText(parameter, &block))};
    snprintf(scriptFile, sizeof scriptFile, "%s", texts[0]);
    snprintf(startedScript, sizeof startedScript, "%s", texts[1]);
    snprintf(scriptParameter, sizeof scriptParameter, "%s", texts[2]);
    for (int i = 0; i < 3; ++i) {
        free(texts[i]);
    }
    return 0;
}

static int16_t currentEnv(void* environment) {
    return environment == NULL ? 1 : 0;
}

static void makeStructure(void* instance) {
    const size_t page = (size_t)sysconf(_SC_PAGESIZE);
    char* memory = mmap(NULL, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    CHECK(memory != MAP_FAILED && mprotect(memory + page, page, PROT_NONE) == 0);
    memset(memory, 0x5A, page); /* nothing in front of it is 0 by chance */
    call = memory + page - kStructureSize;
    memset(call, 0, kStructureSize);
    write32(call, kUnusedId, -1);
    writeWord(call, kEntryPoint, (uintptr_t)entry);
    writeWord(call, kInstance, (uintptr_t)instance);
    writeWord(call, kStartScript, (uintptr_t)startScript);
    writeWord(call, kCurrentEnv, (uintptr_t)currentEnv);
}

/* Sends a message; all but the result must be as it was afterwards. */
static uintptr_t send(int message, int parm1, uintptr_t parm2, uintptr_t parm3, uintptr_t result) {
    writeByte(call, kMessage, (uint8_t)message);
    writeByte(call, kParm1, (uint8_t)parm1);
    writeWord(call, kParm2, parm2);
    writeWord(call, kParm3, parm3);
    writeWord(call, kResult, result);
    char before[kStructureSize];
    memcpy(before, call, sizeof before);
    entry(call);
    const uintptr_t answer = readWord(call, kResult);
    writeWord(call, kResult, result);
    CHECK(memcmp(before, call, sizeof before) == 0);
    return answer;
}

static char* string(int which) {
    static char bytes[1024];
    enum { kCapacity = 512 };
    uint16_t buffer[kCapacity + 1];
    memset(buffer, 0, sizeof buffer);
    buffer[kCapacity] = 0xABCD;
    CHECK(send(kGetString, which, 0, kCapacity, (uintptr_t)buffer) == (uintptr_t)buffer);
    CHECK(buffer[kCapacity] == 0xABCD);
    size_t i = 0;
    for (; buffer[i] != 0; ++i) {
        CHECK(buffer[i] < 128); /* the plug-in's own strings are ASCII */
        bytes[i] = (char)buffer[i];
    }
    bytes[i] = '\0';
    return bytes;
}

static int start(int version) {
    static const uint16_t kVersionText[] = {'2', '2', '.', '0', '.', '1', 0};
    write16(call, kVersion, (int16_t)version);
    return (int)(int32_t)send(kInit, 1, (uintptr_t)kVersionText, 0, 0);
}

/* --- Calling functions. */

/* The result of a function as text; good until the next call. */
static const char* run(const char* name, int count, ...) {
    static char* result;
    free(result);
    int16_t id = 0;
    while (id < kMostFunctions && !(functions[id].isRegistered && strcmp(functions[id].name, name) == 0)) {
        ++id;
    }
    if (id == kMostFunctions) {
        fail(name);
    }
    CHECK(functions[id].minArguments <= count && count <= functions[id].maxArguments);
    void* environment = FM_ExprEnv_Constructor1(&block);
    void* arguments = FM_DataVect_Constructor1(&block);
    void* answer = FM_Data_Constructor1(&block);
    void* locale = FM_Locale_Constructor1(kSystemLocale, &block);
    va_list list;
    va_start(list, count);
    for (int i = 0; i < count; ++i) {
        void* text = textOf(va_arg(list, const char*));
        void* value = FM_Data_Constructor1(&block);
        FM_Data_SetAsText(value, text, locale, kText, &block);
        FM_DataVect_PushBack(arguments, value, &block);
        FM_Data_Delete(value, &block);
        FM_Text_Delete(text, &block);
    }
    va_end(list);
    CHECK(functions[id].code(id, environment, arguments, answer) == 0);
    result = bytesOf(FM_Data_GetAsText(answer, &block));
    FM_Data_Delete(answer, &block);
    FM_DataVect_Delete(arguments, &block);
    FM_ExprEnv_Delete(environment, &block);
    checkBlock();
    return result;
}

static void expect(const char* expected, const char* got) {
    if (strcmp(expected, got) != 0) {
        fprintf(stderr, "foreign_host: expected \"%s\", got \"%s\"\n", expected, got);
        exit(1);
    }
}

/* --- The run. */

static void load(const char* library, const char* plugin) {
    void* interface = dlopen(library, RTLD_NOW | RTLD_GLOBAL);
    if (interface == NULL) {
        fail(dlerror());
    }
#define FIND(result, name, arguments)                                                                        \
    *(void**)&name = dlsym(interface, #name);                                                                \
    if (name == NULL) {                                                                                      \
        fail("there is no " #name);                                                                          \
    }
    LIBRARY_FUNCTIONS(FIND)
    FIND(void, FM_Host_SetHooks, (const Hooks*))
    const Hooks hooks = {functions, registerFunction, unregisterFunction, NULL, NULL, NULL, 1, 1};
    FM_Host_SetHooks(&hooks);

    void* handle = dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
    if (handle == NULL) {
        fail(dlerror());
    }
    *(void**)&entry = dlsym(handle, "FMExternCallProc");
    CHECK(entry != NULL);
    makeStructure(handle);
}

static void startUp(int functionCount) {
    CHECK(start(49) == -1 && registered == 0);
    CHECK(start(256) == -1 && registered == 0);
    CHECK(start(77) == 54);
    CHECK(registered == functionCount);
    puts("started");
}

/* A host on Linux may tell the plug-in nothing about itself: the instance is 0 then. */
static void readStrings(void) {
    const uintptr_t instances[] = {0, readWord(call, kInstance)};
    for (int i = 0; i < 2; ++i) {
        writeWord(call, kInstance, instances[i]);
        expect("Velocard", string(kNameString));
        CHECK(strlen(string(kHelpString)) > 20);
        expect("KORU1nnYYnn", string(kOptionsString));
        expect("", string(kHelpAddressString));
    }
    puts("strings read");
}

static void callFunctions(void) {
    CHECK(strncmp(run("KORU_Version", 1, "long"), "Velocard ", 9) == 0);
    expect("!!ERROR!!", run("KORU_Open", 1, "nobody"));
    CHECK(atoi(run("KORU_GetLastError", 1, "NUM")) < 0);
    char identifier[64];
    snprintf(identifier, sizeof identifier, "%s", run("KORU_New", 1, "person"));
    CHECK(strstr(identifier, ":ABPerson") != NULL);
    expect("0", run("KORU_SetValueForProperty", 2, "firstname", "J\xC3\xB6rg \xF0\x9F\x98\x80"));
    expect("0", run("KORU_SetValueForProperty", 2, "lastname", "Abroad"));
    expect("0", run("KORU_Save", 0));
    expect("1", run("KORU_Search", 6, "person", "lastname", "", "", "Abroad", "Equal"));
    expect(identifier, run("KORU_OpenFirstRecord", 0));
    expect("J\xC3\xB6rg \xF0\x9F\x98\x80", run("KORU_GetValueForProperty", 1, "firstname"));
    expect("END", run("KORU_OpenNextRecord", 0));
    puts("functions called");
}

static void sendIdle(void) {
    for (int level = 0; level <= 4; ++level) {
        send(kIdle, level, 1, 0, 0);
    }
    puts("idle sent");
}

/* Another program changes the address book; the plug-in starts the script in an idle message. */
static void awaitScript(char** command) {
    expect("0", run("KORU_RegisterUpdateScript", 2, "Contacts", "Changed"));
    char line[4096] = "";
    for (; *command != NULL; ++command) {
        snprintf(line + strlen(line), sizeof line - strlen(line), "'%s' ", *command);
    }
    CHECK(system(line) == 0);
    for (int i = 0; i < 300 && startedScript[0] == '\0'; ++i) {
        send(kIdle, 0, 1, 0, 0);
        nanosleep(&(struct timespec){0, 100000000}, NULL);
    }
    expect("Contacts", scriptFile);
    expect("Changed", startedScript);
    CHECK(strncmp(scriptParameter, "New ", 4) == 0);
    puts("script started");
}

int main(int argc, char** argv) {
    if (argc < 4) {
        fprintf(stderr, "usage: foreign_host LIBRARY PLUGIN FUNCTION_COUNT [COMMAND...]\n");
        return 2;
    }
    load(argv[1], argv[2]);
    startUp(atoi(argv[3]));
    readStrings();
    callFunctions();
    sendIdle();
    if (argc > 4) {
        awaitScript(argv + 4);
    }
    send(kPreferences, 0, 0, 0, 0);
    send(kShutdown, 0, 0, 0, 0);
    /* The function that names update scripts is registered by the tests alone; the plug-in leaves it. */
    CHECK(registered == (argc > 4 ? 1 : 0));
    puts("shut down");
    return 0;
}
