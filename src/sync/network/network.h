// Network and time settings: the web interface's network, time and HTTPS
// files carried into the ONVIF device configuration ("/tmp/onvif/onvif.conf"
// and its persistent copy), and the IPv6 state into the server block.
#pragma once

#include <string>

#include "shm/block.h"

namespace onvif {

// Sync command 1: addresses, prefix, gateway, DNS, ports, NTP, time zone,
// daylight saving, host name and the brand-dependent model, MTU and name
// scopes. `device` is ONVIF_DEVICE; the multi-stream flag selects nothing here.
int Update_Network(int multiStream, int device, shm::ShmBlock& block);

// Sync command 29: the IPv4 address and prefix into every IPv4 address and
// prefix key of the live onvif.conf only.
int Update_IPAddr(shm::ShmBlock& block);

// Sync command 20: ONVIF_IPV6_STATUS from "root.Network.IPv6.Enabled=".
int Update_IPV6(shm::ShmBlock& block);

// The prefix length of a dotted subnet mask, as the firmware counts it: the
// sum over the four parts of 255->8, 254->7, 252->6, 248->5, 240->4, 224->3,
// 192->2, 128->1, anything else 0 (no contiguity test, not a bit count).
// A mask with fewer than four parts gives 0.
int prefixLength(const char* mask);

}  // namespace onvif
