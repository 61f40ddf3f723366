-- For Wireshark and tshark: shows what goes to or from a port as api_msg of zorv.proto. A UDP datagram is a message; in a
-- TCP stream each message follows its length.
--
--   tshark -X lua_script:zorv.lua -X lua_script1:4711 -X lua_script1:varint \
--     -o 'uat:protobuf_search_paths:"/path/to/proto","TRUE"' -r capture.pcap
--
-- The port and the form of the lengths (varint, be32 or le32) are given by lua_script1, or in the preferences of the
-- protocol "zorv", which is how it is done when this file is in the folder of plugins.

local given = {...}
local forms = {varint = 0, be32 = 1, le32 = 2}

local zorv = Proto("zorv", "pavo-zorv messages")
zorv.fields.length = ProtoField.uint32("zorv.length", "Message length")
zorv.prefs.port = Pref.uint("Port", tonumber(given[1]) or 0, "UDP and TCP to or from this port is api_msg; 0 disables")
zorv.prefs.form = Pref.enum("Lengths in TCP", forms[given[2] or "varint"] or 0, "How the length of a message is written",
  {{1, "varint", 0}, {2, "be32: 32 bits, the highest byte first", 1}, {3, "le32: 32 bits, the lowest byte first", 2}},
  false)

local protobuf = Dissector.get("protobuf")
local registered = 0

-- The length that a prefix says, and the bytes of the prefix; nothing if it goes on after the buffer. What is no prefix is
-- shown as a message, which it is not either.
local function read_prefix(buffer)
  if zorv.prefs.form == 1 then return buffer(0, 4):uint(), 4 end
  if zorv.prefs.form == 2 then return buffer(0, 4):le_uint(), 4 end
  local length, unit = 0, 1
  for at = 0, math.min(buffer:len(), 5) - 1 do
    local byte = buffer(at, 1):uint()
    length = length + byte % 128 * unit
    if byte < 128 then return length, at + 1 end
    unit = unit * 128
  end
  if buffer:len() >= 5 then return buffer:len(), 0 end
end

local function show_message(range, packet, tree)
  local branch = tree:add(zorv, range)
  branch:add(zorv.fields.length, range, range:len()):set_generated()
  packet.private["pb_msg_type"] = "message,zorv.api_msg"
  if range:len() > 0 then protobuf:call(range:tvb(), packet, tree) end
  packet.cols.protocol = "zorv"
end

local function is_tcp(packet) return packet.port_type == 2 end

function zorv.dissector(buffer, packet, tree)
  if not is_tcp(packet) then return show_message(buffer(), packet, tree) end
  local smallest = zorv.prefs.form == 0 and 1 or 4
  dissect_tcp_pdus(buffer, tree, smallest,
    function(rest, _, offset)
      local length, size = read_prefix(rest(offset):tvb())
      return length and length + size or 0
    end,
    function(message, of_packet, of_tree)
      local length, size = read_prefix(message)
      if length == 0 then
        of_tree:add(zorv, message()):add(zorv.fields.length, message(), 0)
        of_packet.cols.protocol = "zorv"
      else
        show_message(message(size, length), of_packet, of_tree)
      end
      return message:len()
    end)
  return buffer:len()
end

local function register()
  for _, name in ipairs({"udp.port", "tcp.port"}) do
    local ports = DissectorTable.get(name)
    if registered ~= 0 then ports:remove(registered, zorv) end
    if zorv.prefs.port ~= 0 then ports:add(zorv.prefs.port, zorv) end
  end
  registered = zorv.prefs.port
end

zorv.prefs_changed = register
register()
