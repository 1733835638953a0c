-- A model of an editing application, as its scripting interface shows it. What it is to show lies in a folder (see README.md):
-- session.lua, transport, and calls, to which every call that changes something is added.

local folder, secondsSince, wait = ...

local function readFile(name)
  local file = io.open(folder .. "/" .. name, "r")
  if not file then return nil end
  local content = file:read("*a")
  file:close()
  return content
end

-- The session: a table of plain values, in a file that can do nothing but be one.
local sessionText, session

local function loadSession(content)
  local chunk = loadstring("return " .. content, "session.lua")
  if not chunk then return nil end
  setfenv(chunk, {})
  local isRead, value = pcall(chunk)
  return isRead and type(value) == "table" and value or nil
end

-- What is done is written as the call that it was.

local isReplaying = false

local function literal(value)
  -- %q breaks the line where the text does.
  if type(value) == "string" then return (string.format("%q", value):gsub("\n", "n")) end
  if type(value) == "number" then return string.format("%.14g", value) end
  if type(value) ~= "table" then return tostring(value) end
  local keys, parts = {}, {}
  for key in pairs(value) do keys[#keys + 1] = key end
  table.sort(keys)
  for i, key in ipairs(keys) do parts[i] = key .. " = " .. literal(value[key]) end
  return "{" .. table.concat(parts, ", ") .. "}"
end

local function note(object, method, ...)
  if isReplaying then return end
  local parts = {}
  for i = 1, select("#", ...) do parts[i] = literal((select(i, ...))) end
  local file = assert(io.open(folder .. "/calls", "a"))
  file:write(object, ":", method, "(", table.concat(parts, ", "), ")\n")
  file:close()
end

-- Time

local function exactRate()
  return tonumber(session.rate:match("^[%d.]+")) or 24
end

local function frameRate()
  return math.floor(exactRate() + 0.5)
end

-- A drop-frame timecode leaves out two (at 60: four) numbers at the start of every minute but each tenth.
local function droppedNumbers()
  return session.rate:find("DF", 1, true) and math.floor(frameRate() / 15) or 0
end

-- How often the editor has been called since the last wait, and the time that calls have taken so far.
local callCount, secondsInCalls = 0, 0

local function currentFrame()
  local frame, speed, anchor = (readFile("transport") or ""):match("^(%-?%d+) (%-?[%d.]+) (%d+)")
  if not frame then return 0 end
  -- Waits that add up to a frame may be a hair short of it.
  return math.max(0, frame + math.floor((secondsSince(anchor) + secondsInCalls) * exactRate() * speed + 1e-6))
end

local function setFrame(frame)
  if isReplaying then return end
  -- Put in place at once, as others may read at any moment.
  local file = assert(io.open(folder .. "/transport.host", "w"))
  file:write(string.format("%d 0 0\n", frame))
  file:close()
  os.rename(folder .. "/transport.host", folder .. "/transport")
end

local function timecodeOf(frame)
  local rate, dropped = frameRate(), droppedNumbers()
  local tenMinutes, minute = rate * 600 - 9 * dropped, rate * 60 - dropped
  frame = frame + math.floor(frame / tenMinutes) * 9 * dropped +
    math.max(math.floor((frame % tenMinutes - dropped) / minute), 0) * dropped
  local seconds = math.floor(frame / rate)
  local separator = dropped > 0 and ";" or ":"
  return string.format("%02d:%02d:%02d%s%02d", math.floor(seconds / 3600) % 100, math.floor(seconds / 60) % 60, seconds % 60,
    separator, frame % rate)
end

local function framesOf(timecode)
  local h, m, s, f = timecode:match("^(%d+)[:;](%d+)[:;](%d+)[:;](%d+)$")
  if not h then return nil end
  local minutes = h * 60 + m
  return (minutes * 60 + s) * frameRate() + f - (minutes - math.floor(minutes / 10)) * droppedNumbers()
end

-- Objects

-- An older version lacks some of the functions, and some of them may fail.
local function object(methods)
  return setmetatable({}, { __index = function(_, name)
    if not session then error("the editor has quit") end
    if (session.missing or {})[name] then return nil end
    if (session.failing or {})[name] then return function() error(name .. " fails") end end
    local method = methods[name]
    return method and function(...)
      callCount = callCount + 1
      secondsInCalls = secondsInCalls + (session.callSeconds or 0)
      return method(...)
    end
  end })
end

local resolve, manager, project, timeline, video, graph

local function mediaItem(clip)
  return object({ GetClipProperty = function(_, name) return name == "File Path" and clip.path or nil end })
end

local function clipObject(clip, name)
  local methods = {
    GetName = function() return clip.name end,
    GetStart = function() return clip.start end,
    GetEnd = function() return clip.finish end,
    GetType = function() return clip.kind or "Audio" end,
    GetSourceStartFrame = function() return clip.sourceStart end,
    GetLeftOffset = function() return clip.sourceStart end,
    GetMediaPoolItem = function() return clip.path and mediaItem(clip) end,
    GetProperty = function(_, property) return (clip.properties or {})[property] end,
  }
  function methods.SetProperty(_, property, value)
    note(name, "SetProperty", property, value)
    clip.properties = clip.properties or {}
    clip.properties[property] = value
    return true
  end
  return object(methods)
end

local function track(kind, i)
  return kind == "audio" and session.tracks[i] or nil
end

local function clipNamed(i, j)
  return clipObject(session.tracks[i].clips[j], "clip(" .. i .. ", " .. j .. ")")
end

graph = object({
  GetNumNodes = function() return session.nodes end,
  SetNodeEnabled = function(_, node, isEnabled)
    note("graph", "SetNodeEnabled", node, isEnabled)
    return true
  end,
})

video = object({
  GetName = function() return session.videoClip end,
  GetNodeGraph = function() return graph end,
  SetCDL = function(_, values)
    note("video", "SetCDL", values)
    return true
  end,
})

timeline = object({
  GetName = function() return session.timeline end,
  GetSetting = function(_, name) return name == "timelineFrameRate" and session.rate or nil end,
  GetCurrentTimecode = function() return timecodeOf(currentFrame()) end,
  SetCurrentTimecode = function(_, timecode)
    note("timeline", "SetCurrentTimecode", timecode)
    local frame = framesOf(timecode)
    if frame then setFrame(frame) end
    return frame ~= nil
  end,
  GetCurrentVideoItem = function() return session.videoClip and video end,
  GetTrackCount = function(_, kind) return kind == "audio" and #session.tracks or 1 end,
  GetTrackName = function(_, kind, i) return track(kind, i) and track(kind, i).name end,
  GetTrackSubType = function(_, kind, i) return track(kind, i) and track(kind, i).subtype end,
  GetIsTrackEnabled = function(_, kind, i) return track(kind, i) and track(kind, i).isEnabled end,
  GetIsTrackLocked = function(_, kind, i) return track(kind, i) and track(kind, i).isLocked end,
  GetItemListInTrack = function(_, kind, i)
    local items = {}
    for j = 1, track(kind, i) and #track(kind, i).clips or 0 do items[j] = clipNamed(i, j) end
    return items
  end,
  SetTrackEnable = function(_, kind, i, isEnabled)
    note("timeline", "SetTrackEnable", kind, i, isEnabled)
    if track(kind, i) then track(kind, i).isEnabled = isEnabled end
    return track(kind, i) ~= nil
  end,
  SetTrackLock = function(_, kind, i, isLocked)
    note("timeline", "SetTrackLock", kind, i, isLocked)
    if track(kind, i) then track(kind, i).isLocked = isLocked end
    return track(kind, i) ~= nil
  end,
  SetClipsLinked = function(_, areLinked)
    note("timeline", "SetClipsLinked", areLinked)
    return true
  end,
  GetVoiceIsolationState = function(_, i) return track("audio", i) and track("audio", i).isolation end,
  SetVoiceIsolationState = function(_, i, state)
    note("timeline", "SetVoiceIsolationState", i, state)
    if track("audio", i) then track("audio", i).isolation = state end
    return track("audio", i) ~= nil
  end,
})

project = object({
  GetName = function() return session.project end,
  GetCurrentTimeline = function() return session.timeline and timeline end,
})
manager = object({ GetCurrentProject = function() return session.hasProject ~= false and project or nil end })
resolve = object({
  GetVersionString = function() return session.version end,
  GetProjectManager = function() return manager end,
  GetCurrentPage = function() return session.page end,
  OpenPage = function(_, page)
    note("resolve", "OpenPage", page)
    session.page = page
    return true
  end,
})

-- What was done in an earlier run of the host is done again, so that the editor outlives its host.
local function replay()
  local environment = { resolve = resolve, timeline = timeline, video = video, graph = graph, clip = clipNamed }
  isReplaying = true
  for line in (readFile("calls") or ""):gmatch("[^\n]+") do
    local chunk = loadstring(line, "calls")
    if chunk then pcall(setfenv(chunk, environment)) end
  end
  isReplaying = false
end

local function look()
  local content = readFile("session.lua")
  if content == sessionText then return end
  sessionText = content
  session = content and loadSession(content) or nil
  if session then replay() end
end

bmd = {
  scriptapp = function(name)
    look()
    return name == "Resolve" and session and resolve or nil
  end,
  -- The editor may have changed in the meantime, or quit, and its host with it.
  wait = function(seconds)
    if session.tellsCalls then print("CALLS " .. callCount) end
    callCount = 0
    wait(seconds)
    look()
    if not session then os.exit(0) end
  end,
}
