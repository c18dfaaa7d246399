-- Changes rows, and puts what was changed at the end of the list.
--
-- Arguments: the life of the store, the writer, the writer's own number of the change, then for
-- each operation its kind, the row's path, the field and the value.
-- Answer: the id of the change; or 'otherLife', 'unmet' when a field has another value than the
-- change requires, or 'rootStands' when a root that it makes stands already, and then nothing was
-- changed.

local life, writer, number = ARGV[1], ARGV[2], ARGV[3]

if #ARGV < 3 or (#ARGV - 3) % 4 ~= 0 then
   return redis.error_reply('ERR change: four arguments for each operation')
end
if redis.call('GET', 'state:life') ~= life then return 'otherLife' end
-- A key of another kind shows here, before anything is changed.
redis.call('XLEN', 'state:changes')
redis.call('HLEN', 'state:roots')

local function key(path) return 'state:row:' .. path end
local function stands(path) return redis.pcall('HEXISTS', key(path), '.type') == 1 end
local function isField(field) return field ~= '' and field ~= '.type' end

for i = 4, #ARGV, 4 do
   if ARGV[i] == 'make' and ARGV[i + 1] == '' and stands(ARGV[i + 2]) then return 'rootStands' end
   if ARGV[i] == 'require' then
      local value = redis.pcall('HGET', key(ARGV[i + 1]), ARGV[i + 2])
      if type(value) == 'string' and value ~= ARGV[i + 3] then return 'unmet' end
   end
end

-- Removes a row and all below it.
local function wipe(path)
   local waiting = {path}
   while #waiting > 0 do
      local at = table.remove(waiting)
      local row = redis.pcall('HGETALL', key(at))
      for i = 1, #row, 2 do
         if row[i + 1]:find('^"[%w_]+::[%w_:]+"$') then waiting[#waiting + 1] = at .. '/' .. row[i] end
      end
      if redis.call('DEL', key(at)) == 1 then redis.call('HDEL', 'state:roots', at) end
   end
end

-- The directory that a root is an entry of as well, and the entry's name.
local function directory(root)
   local holder, entry = root:match('^(.*)/([^/]+)$')
   if holder and redis.pcall('HGET', key(holder), '.type') == 'Rex::Dir' then
      return holder, entry
   end
end

local kinds = {}

function kinds.set(row, field, value)
   if not isField(field) or not stands(row) then return false end
   if redis.call('EXISTS', key(row .. '/' .. field)) == 1 then wipe(row .. '/' .. field) end
   redis.call('HSET', key(row), field, value)
   return true
end

function kinds.make(row, field, value)
   if not isField(field) or not value:find('^[%w_]+::[%w_:]+$') then return false end
   if row ~= '' and not stands(row) then return false end
   local path = row == '' and field or row .. '/' .. field
   wipe(path)
   redis.call('HSET', key(path), '.type', value)
   if row == '' then
      redis.call('HSET', 'state:roots', path, value)
      row, field = directory(path)
   end
   if row then redis.call('HSET', key(row), field, '"' .. value .. '"') end
   return true
end

function kinds.remove(row, field)
   if not isField(field) then return false end
   local path = row == '' and field or row .. '/' .. field
   if row == '' then
      if not stands(path) then return false end
      row, field = directory(path)
      if row then redis.call('HDEL', key(row), field) end
   elseif not stands(row) or redis.call('HDEL', key(row), field) == 0 then
      return false
   end
   wipe(path)
   return true
end

local made = {}
for i = 4, #ARGV, 4 do
   local kind = kinds[ARGV[i]]
   if kind and kind(ARGV[i + 1], ARGV[i + 2], ARGV[i + 3]) then
      for j = i, i + 3 do made[#made + 1] = ARGV[j] end
   end
end

-- In entries of at most 1000 operations: a call takes no more arguments than that.
local last
for from = 1, math.max(#made, 1), 4000 do
   local upto = math.min(from + 3999, #made)
   local entry = {'w', writer, 'n', number}
   if upto < #made then
      entry[5], entry[6] = 'm', '1'
   end
   for i = from, upto do entry[#entry + 1] = made[i] end
   last = redis.call('XADD', 'state:changes', 'MAXLEN', '~', '20000', '*', unpack(entry))
end
redis.call('PUBLISH', 'state:changed', last)
return last
