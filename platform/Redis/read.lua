-- The changes behind one that the reader has seen.
--
-- Arguments: the life of the store, the id of that change, how many entries are enough.
-- Answer: entries as XRANGE gives them, none of a change without all of it; or 'gone' when the list
-- does not reach back to that change, or is of another life.

local life, after, enough = ARGV[1], ARGV[2], tonumber(ARGV[3])
-- An answer of many large entries would be in the way of everybody else's.
local most = 40000

if redis.call('GET', 'state:life') ~= life then return 'gone' end
if #redis.call('XRANGE', 'state:changes', after, after) == 0 then return 'gone' end

local answer, texts = {}, 0
while true do
   local entries = redis.call('XRANGE', 'state:changes', '(' .. after, '+', 'COUNT', 100)
   for _, entry in ipairs(entries) do
      local fields = entry[2]
      answer[#answer + 1] = entry
      texts = texts + #fields
      after = entry[1]
      local more = fields[5] == 'm' and fields[6] == '1'
      if not more and (#answer >= enough or texts >= most) then return answer end
   end
   if #entries < 100 then return answer end
end
