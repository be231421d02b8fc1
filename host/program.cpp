// Services that have nothing to do with pictures: messages, background tasks, and those of parts that this
// host lacks, such as controls.

#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

ProgramLog log;
int32_t lastTask = 0;

int32_t registerTask(void* function, int32_t, void*) {
  log.backgroundTasks[++lastTask] = function;
  return lastTask;
}

void unregisterTask(int32_t id) {
  if (log.backgroundTasks.erase(id) == 0)
    noteError("background task " + std::to_string(id) + " was never registered");
}

double hostVersion() { return settings().version.value_or(0); }
RBBoolean isBuiltProgram() { return 1; }
RBBoolean isDebugRun() { return 0; }
void yield() { ++log.yields; }
void showMessage(REALstringStruct* text) { log.messages.push_back(stringBytes(text)); }

// This host has no interfaces, delegates, controls and folder items.
void* interfaceRoutine(REALobjectStruct*, const char*, const char*) { return nullptr; }
void* delegateInvoker(REALobjectStruct*) { return nullptr; }
void controlBounds(REALcontrolStruct*, void*) {}
REALgraphicsStruct* controlGraphics(REALcontrolStruct*) { return nullptr; }
REALwindowStruct* controlWindow(REALcontrolStruct*) { return nullptr; }
RBBoolean tabPanelVisible(REALcontrolStruct*) { return 0; }
void* eventInstance(REALcontrolStruct*, void*) { return nullptr; }
REALstringStruct* folderItemPath(REALfolderItemStruct*) { return nullptr; }

void* globalMethod(const char* declaration) {
  return declaration ? findMethod(Giver::globalMethod, declaration) : nullptr;
}

}  // namespace

const ProgramLog& programLog() { return log; }

void noteDrawnText(const std::string& text) { log.drawnTexts.push_back(text); }

void resetProgram() {
  log = {};
  lastTask = 0;
}

void addProgramServices(std::vector<Entry>& all) {
  all.insert(all.end(), {
                            entry<registerTask>("PluginRegisterBackgroundTask"),
                            entry<unregisterTask>("PluginUnregisterBackgroundTask"),
                            entry<hostVersion>("REALGetRBVersion"),
                            entry<isBuiltProgram>("REALinRuntime"),
                            entry<isDebugRun>("REALInDebugMode"),
                            entry<yield>("REALYieldToRB"),
                            entry<showMessage>("RuntimeMsgBox"),
                            entry<globalMethod>("REALLoadGlobalMethod"),
                            entry<interfaceRoutine>("GetInterfaceRoutine"),
                            entry<delegateInvoker>("PluginGetDelegateInvoker"),
                            entry<controlBounds>("GetControlBounds"),
                            entry<controlGraphics>("REALGetControlGraphics"),
                            entry<controlWindow>("getControlWindow"),
                            entry<tabPanelVisible>("GetTabPanelVisible"),
                            entry<eventInstance>("GetEventInstance"),
                            entry<folderItemPath>("REALpathFromFolderItem"),
                        });
}

}  // namespace host
