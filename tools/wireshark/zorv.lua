-- For Wireshark and tshark: shows UDP payloads to or from a port of your choice as api_msg of zorv.proto.
--
--   tshark -X lua_script:zorv.lua -X lua_script1:4711 -o 'uat:protobuf_search_paths:"/path/to/proto","TRUE"' -r file.pcap
--
-- The port is given by lua_script1, or in the preferences of the protocol "zorv".

local zorv = Proto("zorv", "pavo-zorv messages")
zorv.prefs.port = Pref.uint("UDP port", tonumber((...)) or 0, "Datagrams to or from this port are api_msg; 0 disables")

local protobuf = Dissector.get("protobuf")
local registered = 0

function zorv.dissector(buffer, packet, tree)
  packet.private["pb_msg_type"] = "message,zorv.api_msg"
  protobuf:call(buffer, packet, tree)
  packet.cols.protocol = "zorv"
end

local function register()
  local ports = DissectorTable.get("udp.port")
  if registered ~= 0 then ports:remove(registered, zorv) end
  registered = zorv.prefs.port
  if registered ~= 0 then ports:add(registered, zorv) end
end

zorv.prefs_changed = register
register()
