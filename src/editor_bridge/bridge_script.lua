local resolve = bmd.scriptapp("Resolve")
if not resolve then os.exit(0) end
local cmdPath = "@COMMAND_FILE@"

-- Runs under the editor's scripting host. Prints what the editor shows, one record a line, and carries out the commands that
-- wait in a file. Lua 5.1; everything is local, and nothing that is read is ever run. It begins with code: the host is given it
-- as an argument, which must not look like an option.

local POLL_SECONDS = 0.033
-- In rounds of the main loop.
local LOOK_AGAIN = 15
local DUMP_AGAIN = 18
-- Calls into the editor that a round may spend on finding clips and on telling of tracks. What takes more goes on in the next
-- round: where a call takes 0.1 ms, the timecode is still told nine times a second, often enough to see that it moves.
local SEARCH_CALLS = 200
local DUMP_CALLS = 600
local LONGEST_COMMANDS = 1024 * 1024
-- Editors have fewer; a larger count is a mistake, and the rest goes untold.
local MOST_TRACKS = 2000
local takenPath = cmdPath .. ".taken"

-- Values from outside

-- A number that every printf takes; anything else is the default.
local function number(value, default)
  value = tonumber(value)
  if not value or value ~= value or value >= 2^53 or value <= -2^53 then return default end
  return value
end

local function whole(value, default)
  value = number(value)
  if not value then return default end
  return value < 0 and math.ceil(value) or math.floor(value)
end

-- What UTF-8 allows beyond ASCII.
local SEQUENCES = {
  "^[\194-\223][\128-\191]",
  "^\224[\160-\191][\128-\191]",
  "^[\225-\236\238\239][\128-\191][\128-\191]",
  "^\237[\128-\159][\128-\191]",
  "^\240[\144-\191][\128-\191][\128-\191]",
  "^[\241-\243][\128-\191][\128-\191][\128-\191]",
  "^\244[\128-\143][\128-\191][\128-\191]",
}

local function sequenceAt(bytes, i)
  for _, pattern in ipairs(SEQUENCES) do
    local sequence = bytes:match(pattern, i)
    if sequence then return sequence end
  end
  return nil
end

-- Each byte that is no text becomes a question mark: the reader throws away all that comes together with it.
local function repaired(bytes)
  local parts, i = {}, 1
  while i <= #bytes do
    local sequence = sequenceAt(bytes, i)
    parts[#parts + 1] = sequence or "?"
    i = i + (sequence and #sequence or 1)
  end
  return table.concat(parts)
end

local function text(value, default)
  if type(value) ~= "string" or value == "" then return default end
  return (value:gsub("[\r\n%z]", " "):gsub("[\128-\255]+", repaired))
end

local function field(value, default)
  return (text(value, default):gsub("|", "/"))
end

local function isOn(value)
  return value == true or value == 1
end

local function member(object, name)
  return object[name]
end

-- Calls that the work under way may still make in this round; nothing while there is none.
local allowance

-- Calls a method of one of the editor's objects. Nothing when there is no such object or method, or when it fails.
local function call(object, method, ...)
  if allowance then
    if allowance == 0 then coroutine.yield() end
    allowance = allowance - 1
  end
  local isThere, run = pcall(member, object, method)
  if not isThere or run == nil then return nil end
  local isDone, result = pcall(run, object, ...)
  if isDone then return result end
  return nil
end

-- Goes on with work that may take several rounds; gives it back until it is done.
local function continued(work, calls, ...)
  allowance = calls
  coroutine.resume(work, ...)
  allowance = nil
  return coroutine.status(work) ~= "dead" and work or nil
end

local function versionLabel()
  local version = call(resolve, "GetVersionString")
  version = type(version) == "string" and version or "20"
  return "RESOLVE " .. (version:match("^%d+%.%d+") or version:match("^%d+") or "20")
end

-- What is known of the editor

local label = versionLabel()
local timeline
local rate, timelineName, page = "24", "Timeline", "edit"
local clipsLinked = 1
-- The timeline that is open, by the names of its project and its own.
local openTimeline
local mustDump = true
-- For each audio track its clips, in order: { item, first = frame, last = frame }. Nothing until they have been found.
local clips
-- The work that finds them, and that which tells of the tracks.
local search, dump

local function isPlayable(item)
  if item == nil then return false end
  local kind = call(item, "GetType")
  if type(kind) == "string" and kind:lower() == "transition" then return false end
  return call(item, "GetMediaPoolItem") or type(call(item, "GetProperty", "AudioVolume")) == "number"
end

local function trackCount()
  return math.min(math.max(whole(call(timeline, "GetTrackCount", "audio"), 0), 0), MOST_TRACKS)
end

local function clipsIn(track)
  local list = {}
  local items = call(timeline, "GetItemListInTrack", "audio", track)
  for _, item in ipairs(type(items) == "table" and items or {}) do
    if isPlayable(item) then
      list[#list + 1] = { item = item, first = number(call(item, "GetStart"), 0), last = number(call(item, "GetEnd"), 0) }
    end
  end
  return list
end

local function findClips()
  local found = {}
  for track = 1, trackCount() do found[track] = clipsIn(track) end
  clips = found
end

-- Until the search is done, what was found before holds.
local function beginSearch()
  search = coroutine.create(findClips)
end

local function goOnSearching()
  if search and timeline then search = continued(search, SEARCH_CALLS) end
end

-- Those of a track that is new, or that a command is about before all are known, are looked for alone.
local function clipsOf(track)
  local known = clips and clips[track]
  return known or (track >= 1 and track <= trackCount() and clipsIn(track)) or {}
end

-- Of a track's clips the one under the playhead, or else the one nearest to it; and whether it is the former.
local function clipAt(list, playhead)
  if not playhead then return list[1], false end
  local nearest, shortest = list[1], 999999999
  for _, clip in ipairs(list) do
    if clip.first <= playhead and playhead < clip.last then return clip, true end
    local distance = math.min(math.abs(playhead - clip.first), math.abs(playhead - clip.last))
    if distance < shortest then nearest, shortest = clip, distance end
  end
  return nearest, false
end

local function framesOf(timecode)
  local h, m, s, f = timecode:match("^(%d+)[:;](%d+)[:;](%d+)[:;](%d+)$")
  if not h then return nil end
  -- A drop-frame rate carries " DF" behind the number.
  local frames = math.floor(number(rate:match("^%s*([%d.]+)"), 24) + 0.5)
  if frames < 1 then frames = 24 end
  return number(((h * 60 + m) * 60 + s) * frames + f)
end

local timecode, playhead = "", nil

-- If the editor tells no timecode, the given one holds.
local function readPlayhead(default)
  timecode = field(call(timeline, "GetCurrentTimecode"), default)
  playhead = framesOf(timecode)
end

local function readPage(default)
  page = field(call(resolve, "GetCurrentPage"), default)
end

-- Commands

local function flagAt(fields, i, default)
  return number(fields[i], default) ~= 0
end

local function trackAt(fields)
  return whole(fields[2], 1)
end

local function setOnClip(track, properties)
  local clip = clipAt(clipsOf(track), playhead)
  for _, property in ipairs(clip and properties or {}) do
    call(clip.item, "SetProperty", property[1], property[2])
  end
end

local function videoItem()
  return call(timeline, "GetCurrentVideoItem")
end

local function threeTimes(format, a, b, c)
  return string.format(format .. " " .. format .. " " .. format, a, b, c)
end

-- For each operation how many fields it needs, whether it needs a timeline, whether the tracks are to be told again, and what it
-- does.
local commands = {
  PAGE = { fields = 2, isTold = true, run = function(fields) call(resolve, "OpenPage", fields[2]) end },
  TC = { fields = 2, timeline = true, run = function(fields) call(timeline, "SetCurrentTimecode", fields[2]) end },
  LINK = { fields = 2, timeline = true, isTold = true, run = function(fields)
    local isLinked = flagAt(fields, 2, 1)
    call(timeline, "SetClipsLinked", isLinked)
    clipsLinked = isLinked and 1 or 0
  end },
  MUTE = { fields = 3, timeline = true, isTold = true, run = function(fields)
    call(timeline, "SetTrackEnable", "audio", trackAt(fields), flagAt(fields, 3, 1))
  end },
  LOCK = { fields = 3, timeline = true, isTold = true, run = function(fields)
    call(timeline, "SetTrackLock", "audio", trackAt(fields), flagAt(fields, 3, 0))
  end },
  VOL = { fields = 3, timeline = true, isTold = true, run = function(fields)
    setOnClip(trackAt(fields), { { "AudioVolume", number(fields[3], 0.0) } })
  end },
  PAN = { fields = 3, timeline = true, isTold = true, run = function(fields)
    setOnClip(trackAt(fields), { { "AudioPan", number(fields[3], 0.0) } })
  end },
  VISO = { fields = 4, timeline = true, isTold = true, run = function(fields)
    local track, isEnabled, amount = trackAt(fields), flagAt(fields, 3, 0), number(fields[4], 65)
    call(timeline, "SetVoiceIsolationState", track, { isEnabled = isEnabled, amount = amount })
    setOnClip(track, { { "AudioVoiceIsolationEnabled", isEnabled }, { "AudioVoiceIsolationAmount", amount } })
  end },
  DLEV = { fields = 4, timeline = true, isTold = true, run = function(fields)
    setOnClip(trackAt(fields), {
      { "AudioDialogueLevelerEnabled", flagAt(fields, 3, 0) },
      { "AudioDialogueLevelerOutputGain", number(fields[4], 0.0) },
    })
  end },
  CDL = { fields = 1, timeline = true, run = function(fields)
    local function at(i, default) return number(fields[i], default) end
    local power = at(9, 1.0)
    call(videoItem(), "SetCDL", {
      NodeIndex = fields[2] or "1",
      Slope = threeTimes("%.4f", at(3, 1.0), at(4, 1.0), at(5, 1.0)),
      Offset = threeTimes("%.4f", at(6, 0.0), at(7, 0.0), at(8, 0.0)),
      Power = threeTimes("%.4f", power, power, power),
      Saturation = string.format("%.3f", at(10, 1.0)),
    })
  end },
  NEN = { fields = 3, timeline = true, isTold = true, run = function(fields)
    call(call(videoItem(), "GetNodeGraph"), "SetNodeEnabled", whole(fields[2], 1), flagAt(fields, 3, 1))
  end },
  REFRESH = { fields = 1, isTold = true, run = function()
    beginSearch()
    goOnSearching()
  end },
}

local function runCommand(line)
  local fields = {}
  for token in line:gmatch("[^|]+") do fields[#fields + 1] = token end
  local command = commands[fields[1]]
  if not command or #fields < command.fields or (command.timeline and not timeline) then return end
  pcall(command.run, fields)
  -- Lines that were made before it would take back what it did.
  if command.isTold then dump, mustDump = nil, true end
end

-- Takes the commands that wait. The file lies where everybody may put something: only what can be opened for writing and has an
-- end is read, which a folder and a pipe have not. Of more than can reasonably be commands, none is carried out. It is renamed
-- before it is read: a line that is added meanwhile is either read here, or its writer sees that the file has gone and writes
-- it again. Commands are absolute, so that twice does no harm. A file that cannot be removed is somebody else's, and none of its
-- commands is carried out.
local function takeCommands()
  local file = io.open(cmdPath, "r+")
  if not file then return "" end
  local size = file:seek("end")
  if not size then
    file:close()
    return ""
  end
  local path = os.rename(cmdPath, takenPath) and takenPath or cmdPath
  file:seek("set", 0)
  local content = size <= LONGEST_COMMANDS and file:read(LONGEST_COMMANDS)
  file:close()
  return os.remove(path) and content or ""
end

local function runWaitingCommands()
  local content = takeCommands()
  if content == "" then return end
  for line in content:gmatch("[^\r\n]+") do runCommand(line) end
  readPlayhead(timecode)
  readPage(page)
end

-- What is printed

local function printLine(...)
  io.stdout:write(string.format(...), "\n")
end

-- What the line tells of the clip that is inspected on a track.
local function inspectClip(line, track, clip, isActive)
  local item = clip.item
  local name = field(call(item, "GetName"), "Clip")
  line.clipName = isActive and name or "[" .. name .. "]"
  line.volume = number(call(item, "GetProperty", "AudioVolume"), 0.0)
  line.pan = number(call(item, "GetProperty", "AudioPan"), 0.0)
  if isOn(call(item, "GetProperty", "AudioVoiceIsolationEnabled")) then line.isIsolated = true end
  line.isolation = number(call(item, "GetProperty", "AudioVoiceIsolationAmount"), line.isolation)
  line.isLeveled = isOn(call(item, "GetProperty", "AudioDialogueLevelerEnabled"))
  line.gain = number(call(item, "GetProperty", "AudioDialogueLevelerOutputGain"), 0.0)
  if not isActive then return end
  line.clipStart = whole(clip.first)
  line.sourceStart = whole(call(item, "GetSourceStartFrame") or call(item, "GetLeftOffset"), 0)
  line.clipUID = track .. "_" .. string.format("%d", line.clipStart)
  local path = text(call(call(item, "GetMediaPoolItem"), "GetClipProperty", "File Path"), "")
  line.path = path:gsub("|", "")
end

local function trackLine(track, count, at)
  local clip, isActive = clipAt(clipsOf(track), at)
  local line = { clipName = "Empty", volume = 0.0, pan = 0.0, isolation = 65, gain = 0.0, clipStart = 0, sourceStart = 0,
                 clipUID = "", path = "" }
  local state = call(timeline, "GetVoiceIsolationState", track)
  if type(state) == "table" then
    line.isIsolated = isOn(state.isEnabled)
    line.isolation = number(state.amount, line.isolation)
  end
  if clip then inspectClip(line, track, clip, isActive) end
  local format = text(call(timeline, "GetTrackSubType", "audio", track), "stereo"):upper():gsub("|", "")
  local function flag(value) return value and 1 or 0 end
  return string.format("OXTRK|%d|%d|%s|%s|%s|%d|%d|%.2f|%.1f|%d|%d|%d|%.1f|%d|%s|%d|%d|%s", track, count,
    field(call(timeline, "GetTrackName", "audio", track), "Audio " .. track), line.clipName, format,
    -- A track that cannot be asked is not shown as muted.
    flag(call(timeline, "GetIsTrackEnabled", "audio", track) ~= false), flag(call(timeline, "GetIsTrackLocked", "audio", track)),
    line.volume, line.pan, flag(line.isIsolated), math.floor(line.isolation + 0.5), flag(line.isLeveled), line.gain,
    flag(isActive), line.clipUID, line.clipStart, line.sourceStart, line.path)
end

local lastDump = ""

-- As they are while the playhead is at that frame.
local function dumpTracks(at)
  local count = trackCount()
  local lines = {}
  for track = 1, count do lines[track] = trackLine(track, count, at) end
  local item = videoItem()
  local clip = field(call(item, "GetName"), "Timeline Clip")
  local nodes = whole(call(call(item, "GetNodeGraph"), "GetNumNodes"), 1)
  -- With whether clips are linked, which only the header tells: an older header may just have told otherwise.
  local text = count .. ";" .. clipsLinked .. ";" .. table.concat(lines, ";") .. ";CLR:" .. clip .. ":" .. nodes
  if text == lastDump then return end
  lastDump = text
  printLine("OXHDR|%d|%d|%s|%d", count, clipsLinked, clip, nodes)
  for _, line in ipairs(lines) do io.stdout:write(line, "\n") end
  io.stdout:flush()
end

local lastReport = ""

local function reportTimecode(isForced)
  local report = table.concat({ timecode, timelineName, page, rate }, "\n")
  if timecode == "" or (report == lastReport and not isForced) then return end
  lastReport = report
  printLine("OXTC|%s|%s|%s|%s|%s|%d|%d", timecode, rate, label, timelineName, page, clipsLinked, playhead or 0)
  io.stdout:flush()
end

local function activeClips()
  local parts = {}
  for track, list in ipairs(clips) do
    local clip, isActive = clipAt(list, playhead)
    parts[track] = track .. ":" .. (isActive and clip.first or "_")
  end
  return table.concat(parts, ",")
end

-- The main loop

local function lookAgain()
  local manager = call(resolve, "GetProjectManager")
  if not manager then
    -- Perhaps the editor has quit, or is another one now.
    resolve = bmd.scriptapp("Resolve")
    if not resolve then os.exit(0) end
  end
  local project = call(manager, "GetCurrentProject")
  timeline = call(project, "GetCurrentTimeline")
  if timeline then
    local setting = call(timeline, "GetSetting", "timelineFrameRate")
    rate = field(type(setting) == "number" and tostring(number(setting, 24)) or setting, "24")
    timelineName = field(call(timeline, "GetName"), "Timeline")
    local opened = field(call(project, "GetName"), "") .. "\n" .. timelineName
    if opened ~= openTimeline then
      openTimeline, clips, search, dump, mustDump = opened, nil, nil, nil, true
    end
    if not search then beginSearch() end
  end
  readPage("edit")
end

local lastActive = ""

local function round(tick)
  if tick % LOOK_AGAIN == 0 or not timeline then lookAgain() end
  goOnSearching()
  readPlayhead("")
  runWaitingCommands()
  if clips and playhead then
    local active = activeClips()
    if active ~= lastActive then lastActive, mustDump = active, true end
  end
  local mayDump = timeline and clips and not dump
  reportTimecode(mustDump and mayDump)
  if mayDump and (mustDump or tick % DUMP_AGAIN == 0) then
    dump, mustDump = coroutine.create(dumpTracks), false
  end
  if dump and timeline then dump = continued(dump, DUMP_CALLS, playhead) end
end

local tick = 0
while true do
  pcall(round, tick)
  tick = tick + 1
  bmd.wait(POLL_SECONDS)
end
