#include "app/main_interface.h"
#include "platform/application.h"

int main(int argc, char** argv) {
  return karno::platform::applicationMain(argc, argv, karno::loadMainInterface);
}
