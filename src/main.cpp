#include "cli/app.h"

int main(int argc, char** argv) { return cli::runOnvifCtrl(argc, argv); }
