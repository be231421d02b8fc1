// The wrappers that do more than forward a call.

#include "frame/entry_points.h"

#include "frame/host_state.h"

void* HCallResolver(const char* name) { return gResolver ? gResolver(name) : nullptr; }

int32_t REALRegisterBackgroundTask(void (*task)(void*), uint32_t period, void* data) {
  static HostEntry<int32_t(void (*)(void*), uint32_t, void*)> entry{"PluginRegisterBackgroundTask"};
  return entry.offered() ? entry(task, period, data) : -1;
}

REALobjectStruct* REALnewInstanceWithClass(REALclassRefStruct* classRef) {
  static HostEntry<REALobjectStruct*(REALclassRefStruct*)> entry{"CreateInstance"};
  return entry.offered() && classRef ? entry(classRef) : nullptr;
}

bool REALObjectIsA(REALobjectStruct* object, REALclassRefStruct* classRef) {
  static HostEntry<RBBoolean(REALobjectStruct*, REALclassRefStruct*)> entry{"RuntimeObjectIsa"};
  return entry(object, classRef) != 0;
}

bool REALObjectIsA(REALobjectStruct* object, const char* className) {
  if (!object) return false;
  REALclassRefStruct* classRef = REALGetClassRef(className);
  return classRef && REALObjectIsA(object, classRef);
}

bool IsMemoryBlock(REALobjectStruct* object) {
  return REALLoadObjectMethod(object, "Constructor(bytes as Integer)") != nullptr;
}

bool IsFolderItem(REALobjectStruct* object) {
  return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description) {
  static HostEntry<RBBoolean(REALpictureStruct*, REALpictureDescription*)> entry{"lockPictureDescription"};
  return entry(picture, description) != 0;
}

bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description,
                                int32_t pictureType) {
  static HostEntry<RBBoolean(REALpictureStruct*, REALpictureDescription*, int32_t)> entry{
      "REALLockPictureDescription"};
  return entry(picture, description, pictureType) != 0;
}

void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture, const void* rectangle,
                              int32_t options) {
  static HostEntry<void(REALgraphicsStruct*, REALpictureStruct*, const void*, int32_t)> entry{
      "REALDrawPicturePrimitive"};
  entry(graphics, picture, rectangle, options);
}

void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture,
                              const void* rectangle) {
  REALDrawPicturePrimitive(graphics, picture, rectangle, 0);
}

void* REALGetEventInstance(REALcontrolStruct* control, REALevent* event) {
  static HostEntry<void*(REALcontrolStruct*, void*)> entry{"GetEventInstance"};
  void* word = event->forOldHosts;
  if (CurrentREALControlVersion == kOldLayoutVersion) {
    // On these hosts the record's second word points to its copy in the old layout, and the event's own
    // second word is in that copy.
    word = reinterpret_cast<void*>(static_cast<REALoldEvent*>(word)->words[1]);
  }
  return entry(control, word);
}
