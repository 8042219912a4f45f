-- Drives `velmora lsp` from Neovim's own LSP client (0.7 and later) and writes what the
-- server answered to a JSON file, for the test that checks it. Run as
--   VELMORA=... ROOT=... FILE=... OUT=... nvim --headless --clean -c 'luafile client.lua'
local env = function(name) return assert(os.getenv(name), name .. ' is not set') end
local result = { errors = {} }

local function finish()
  local f = io.open(env('OUT'), 'w')
  f:write(vim.fn.json_encode(result))
  f:close()
  vim.cmd('qall!')
end

local ok, err = pcall(function()
  local client_id = vim.lsp.start_client({
    name = 'velmora',
    cmd = { env('VELMORA'), 'lsp' },
    root_dir = env('ROOT'),
  })
  assert(client_id, 'the client did not start')
  vim.cmd('edit ' .. vim.fn.fnameescape(os.getenv('FILE')))
  vim.lsp.buf_attach_client(0, client_id)
  local ready = vim.wait(10000, function()
    local c = vim.lsp.get_client_by_id(client_id)
    return c ~= nil and c.initialized
  end, 20)
  assert(ready, 'the server did not initialize')
  local client = vim.lsp.get_client_by_id(client_id)
  result.capabilities = client.server_capabilities or client.resolved_capabilities

  -- Each request the test names, at the position it gives (0-based line, character).
  local requests = vim.fn.json_decode(os.getenv('REQUESTS') or '[]')
  result.answers = {}
  for i, r in ipairs(requests) do
    local params = { textDocument = vim.lsp.util.make_text_document_params() }
    if r.line then params.position = { line = r.line, character = r.character } end
    local answers, failure = vim.lsp.buf_request_sync(0, r.method, params, 10000)
    local answer = answers and answers[client_id]
    result.answers[i] = {
      method = r.method,
      result = answer and answer.result or vim.NIL,
      error = (answer and answer.error) or failure or vim.NIL,
    }
  end
  vim.lsp.stop_client(client_id)
  vim.wait(3000, function() return vim.lsp.get_client_by_id(client_id) == nil end, 20)
end)
if not ok then table.insert(result.errors, tostring(err)) end
finish()
