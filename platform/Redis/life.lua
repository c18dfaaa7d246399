-- The life of the store, which begins where there is none, and the last change.
--
-- Arguments: a life for a store that has none.
-- Answer: the life, the id of the last change.

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
return {life, last}
