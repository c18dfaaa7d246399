-- The rows at some roots and all below them, as they stand now.
--
-- Arguments: a life for a store that has none, then the paths of the roots.
-- Answer: the life, the id of the last change, then for each row its path and its fields with their
-- values, '.type' among them; holders before what they hold.

-- A key of another kind shows here, before anything is changed.
redis.call('XLEN', 'state:changes')

local life = redis.call('GET', 'state:life')
local newest = redis.call('XREVRANGE', 'state:changes', '+', '-', 'COUNT', 1)[1]
local last = newest and newest[1]
if not last or not life then
   -- An empty entry, so that there always is a last one.
   last = redis.call('XADD', 'state:changes', '*', 'w', '', 'n', '0')
end
if not life then
   life = ARGV[1]
   redis.call('SET', 'state:life', life)
end

-- The last one is taken first; a root may stand below another one.
local waiting = {}
for i = 2, #ARGV do waiting[#waiting + 1] = ARGV[i] end
table.sort(waiting, function(a, b) return a > b end)

local answer = {life, last}
local seen = {}
while #waiting > 0 do
   local path = table.remove(waiting)
   local row = seen[path] and {} or redis.pcall('HGETALL', 'state:row:' .. path)
   seen[path] = true
   local typed = false
   for i = 1, #row, 2 do
      if row[i] == '.type' then
         typed = true
      elseif row[i + 1]:find('^"[%w_:]+"$') then
         -- The name of a type, and then it has a row, or some other text, which has none.
         waiting[#waiting + 1] = path .. '/' .. row[i]
      end
   end
   if typed then
      answer[#answer + 1] = path
      answer[#answer + 1] = row
   end
end
return answer
