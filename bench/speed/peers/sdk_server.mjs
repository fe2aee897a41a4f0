// A minimal server with one trivial tool, as the official SDK's own guide has one begin.
import {McpServer} from "@modelcontextprotocol/sdk/server/mcp.js";
import {StdioServerTransport} from "@modelcontextprotocol/sdk/server/stdio.js";

const server = new McpServer({name: "minimal", version: "1.0.0"});
server.registerTool("health", {description: "Confirms that the server is alive."}, async () => ({
  content: [{type: "text", text: "The server is healthy."}],
}));
await server.connect(new StdioServerTransport());
