#include "cli/app.h"

#include <cstdint>
#include <cstdio>
#include <optional>

#include "cli/options.h"
#include "cli/post_parse.h"
#include "shm/block.h"

namespace cli {

using shm::Slot;

int runOnvifCtrl(int argc, char** argv) {
  if (argc < 2) return -1;

  Requests req;
  // The tool passes a count of slots where a byte size is expected; the
  // lookup still succeeds because the server's segment is larger.
  std::optional<shm::ShmBlock> block =
      shm::getShareMemory(shm::kServerShmPath, shm::kServerSlotCount);
  if (!block) {
    std::printf("OnvifCtrl:onvifServer is closed.\n");
    std::printf("OnvifCtrl:Please start onvifServer first.\n");
  }

  if (!parseOptions(argc, argv, block ? &*block : nullptr, req)) {
    std::printf("OnvifCtrl:Parameters initial failed(1).\n");
    return -1;
  }
  if (!block) return 0;

  // The slots saved here are written back at the end. Only the low 8 bits of
  // ONVIF_RESET are kept: that byte is what the firmware expects back.
  int savedServerState = block->get(Slot::SERVER_STATE);
  const std::uint8_t savedResetByte =
      static_cast<std::uint8_t>(block->get(Slot::ONVIF_RESET) & 0xff);

  if (PostParse(req.serverState, req.checkPassword, req.debug, *block, savedServerState) != 0) {
    std::printf("OnvifCtrl:Parameters initial failed(2).\n");
    return -1;
  }

  block->set(Slot::ONVIF_RESET, savedResetByte);
  block->set(Slot::SERVER_STATE, savedServerState);
  block->put(shm::kMarkerSlot, shm::kCompletionMarker);
  return 0;
}

}  // namespace cli
