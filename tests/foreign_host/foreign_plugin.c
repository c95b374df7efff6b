/* A plug-in that knows nothing of this project's headers (interface.h): it reads the messages by their
 * offsets, writes each down in the file that FOREIGN_LOG names, registers functions with and without a
 * description and a script step, starts scripts and sets the current environment through the pointers in the
 * structure.
 */
#include "tests/foreign_host/interface.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#define DECLARE(result, name, arguments) extern result name arguments;
LIBRARY_FUNCTIONS(DECLARE)

static Block block = {1, 0};
static void* message; /* the structure, which the host keeps where it is */

enum { kFlags = 0xFF01 };
static const char kStep[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<PluginStep>\n"
    "<Parameter Type=\"calc\" DataType=\"text\" ShowInline=\"true\" Label=\"Send to\" ID=\"0\"/>\n"
    "<Parameter Type=\"bool\" ShowInline=\"true\" Label=\"Urgent\" ID=\"1\" Default=\"true\"/>\n"
    "<Parameter Type=\"list\" ShowInline=\"true\" Label=\"Colour:\" ID=\"3\" Default=\"7\">\n"
    "<Value ID=\"5\">Red &amp; white</Value><Value ID=\"7\">Green</Value></Parameter>\n"
    "<Parameter Type=\"calc\" DataType=\"number\" Label=\"Count\" ID=\"2\"/>\n"
    "<Parameter Type=\"target\" Label=\"Result\" ID=\"4\"/>\n"
    "</PluginStep>\n";

static void note(const char* line) {
    const char* path = getenv("FOREIGN_LOG");
    FILE* file = path == NULL ? NULL : fopen(path, "a");
    if (file != NULL) {
        fprintf(file, "%s\n", line);
        fclose(file);
    }
}

static void* textOf(const char* bytes) {
    void* text = FM_Text_Constructor1(&block);
    FM_Text_Assign(text, bytes, kUtf8, &block);
    return text;
}

static void answerText(void* result, const void* text) {
    void* locale = FM_Locale_Constructor1(kSystemLocale, &block);
    FM_Data_SetAsText(result, text, locale, kText, &block);
}

static void answerNumber(void* result, int number) {
    void* value = FM_FixPt_Constructor1(number, 16, &block);
    FM_Data_SetAsNumber(result, value, kNumber, &block);
    FM_FixPt_Delete(value, &block);
}

static int numberAt(const void* arguments, uint32_t index) {
    return FM_FixPt_AsLong(FM_DataVect_AtAsNumber(arguments, index, &block), &block);
}

/* Foreign_StartScript ( file ; script ; parameter ): what the host's function answers. */
static int16_t startNamedScript(int16_t id, const void* environment, const void* arguments, void* result) {
    (void)id;
    (void)environment;
    const StartScript start = (StartScript)readWord(message, kStartScript);
    answerNumber(result,
                 start(FM_DataVect_AtAsText(arguments, 0, &block), FM_DataVect_AtAsText(arguments, 1, &block),
                       3, FM_DataVect_At(arguments, 2, &block)));
    return 0;
}

/* Foreign_Evaluate ( calculation ), in an environment of the plug-in's own that is made the current one. */
static int16_t evaluate(int16_t id, const void* environment, const void* arguments, void* result) {
    (void)id;
    (void)environment;
    void* own = FM_ExprEnv_Constructor1(&block);
    const int16_t code = ((CurrentEnv)readWord(message, kCurrentEnv))(own);
    const int16_t evaluated =
        code != 0 ? code
                  : FM_ExprEnv_Evaluate(own, FM_DataVect_AtAsText(arguments, 0, &block), result, &block);
    FM_ExprEnv_Delete(own, &block);
    return evaluated;
}

/* What a step got: its id and each value with its type, with bars between them. Error 5 for the value "fail".
 */
static int16_t runStep(int16_t id, const void* environment, const void* arguments, void* result) {
    (void)environment;
    char line[512];
    int length = snprintf(line, sizeof line, "%d", id);
    for (uint32_t i = 0; i < FM_DataVect_Size(arguments, &block); ++i) {
        const void* value = FM_DataVect_At(arguments, i, &block);
        const void* text = FM_DataVect_AtAsText(arguments, i, &block);
        char bytes[100] = "";
        FM_Text_GetBytes(text, bytes, sizeof bytes, 0, FM_Text_GetSize(text, &block), kUtf8, &block);
        length += snprintf(line + length, sizeof line - (size_t)length, "|%d:%s",
                           FM_Data_GetNativeType(value, &block), bytes);
        if (strcmp(bytes, "fail") == 0) {
            return 5;
        }
    }
    void* text = textOf(line);
    answerText(result, text);
    FM_Text_Delete(text, &block);
    note(line);
    return 0;
}

static void* plugin(void) {
    return FM_QuadChar_Constructor2('F', 'R', 'G', 'N', &block);
}

/* Foreign_RegisterStep ( id ; name ; definition ): what registering answers. */
static int16_t registerStep(int16_t id, const void* environment, const void* arguments, void* result) {
    (void)id;
    (void)environment;
    void* description = textOf("");
    answerNumber(result, FM_ExprEnv_RegisterScriptStep(plugin(), (int16_t)numberAt(arguments, 0),
                                                       FM_DataVect_AtAsText(arguments, 1, &block),
                                                       FM_DataVect_AtAsText(arguments, 2, &block),
                                                       description, kFlags, runStep, &block));
    FM_Text_Delete(description, &block);
    return 0;
}

/* Foreign_RemoveStep ( id ): what unregistering answers. */
static int16_t removeStep(int16_t id, const void* environment, const void* arguments, void* result) {
    (void)id;
    (void)environment;
    answerNumber(result, FM_ExprEnv_UnRegisterScriptStep(plugin(), (int16_t)numberAt(arguments, 0), &block));
    return 0;
}

static void registerAll(void) {
    FM_ExprEnv_RegisterExternalFunction(plugin(), 1, textOf("Foreign_StartScript"),
                                        textOf("Foreign_StartScript ( file ; script ; parameter )"), 3, 3,
                                        kFlags, startNamedScript, &block);
    FM_ExprEnv_RegisterExternalFunctionEx(
        plugin(), 2, textOf("Foreign_Evaluate"), textOf("Foreign_Evaluate ( calculation )"),
        textOf("Evaluates in an environment of its own."), 1, 1, kFlags, evaluate, &block);
    FM_ExprEnv_RegisterExternalFunctionEx(plugin(), 3, textOf("Foreign_RegisterStep"),
                                          textOf("Foreign_RegisterStep ( id ; name ; definition )"),
                                          textOf(""), 3, 3, kFlags, registerStep, &block);
    FM_ExprEnv_RegisterExternalFunction(plugin(), 4, textOf("Foreign_RemoveStep"),
                                        textOf("Foreign_RemoveStep ( id )"), 1, 1, kFlags, removeStep,
                                        &block);
    FM_ExprEnv_RegisterScriptStep(plugin(), 1, textOf("Foreign Step"), textOf(kStep),
                                  textOf("Shows what it is given."), kFlags, runStep, &block);
}

static void answerString(int which) {
    const char* text = which == kOptionsString ? "FRGN1nnYYYn"
                       : which == kNameString  ? "Foreign plug-in"
                       : which == kHelpString  ? "Tests the host."
                                               : "";
    uint16_t* buffer = (uint16_t*)readWord(message, kResult);
    for (size_t i = 0; i <= strlen(text) && i < readWord(message, kParm3); ++i) {
        buffer[i] = (uint16_t)text[i];
    }
}

static void noteStart(void) {
    char text[32] = "";
    const uint16_t* units = (const uint16_t*)readWord(message, kParm2);
    for (int i = 0; i < 31 && units[i] != 0; ++i) {
        text[i] = (char)units[i];
    }
    char line[256];
    void* instance = (void*)readWord(message, kInstance);
    const uintptr_t entry = readWord(message, kEntryPoint);
    snprintf(line, sizeof line, "start %d id %d application %d %s entry %s instance %s",
             read16(message, kVersion), read32(message, kUnusedId), readByte(message, kParm1), text,
             entry != 0 && entry == (uintptr_t)dlsym(instance, "FMExternCallProc") ? "own" : "other",
             instance != NULL ? "own" : "none");
    note(line);
}

__attribute__((visibility("default"))) void FMExternCallProc(void* call) {
    char line[64];
    message = call;
    switch (readByte(call, kMessage)) {
    case kInit:
        noteStart();
        registerAll();
        writeWord(call, kResult, 77);
        return;
    case kGetString:
        snprintf(line, sizeof line, "string %d", readByte(call, kParm1));
        note(line);
        answerString(readByte(call, kParm1));
        return;
    case kIdle:
        snprintf(line, sizeof line, "idle %d session %d", readByte(call, kParm1),
                 (int)readWord(call, kParm2));
        break;
    case kSessionShutdown:
        snprintf(line, sizeof line, "end of session %d", (int)readWord(call, kParm2));
        break;
    case kFileShutdown:
        snprintf(line, sizeof line, "end of file %d in session %d", (int)readWord(call, kParm3),
                 (int)readWord(call, kParm2));
        break;
    case kShutdown:
        snprintf(line, sizeof line, "end");
        break;
    default:
        snprintf(line, sizeof line, "message %d", readByte(call, kMessage));
    }
    note(line);
}
