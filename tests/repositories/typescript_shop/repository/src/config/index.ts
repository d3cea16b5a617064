export const config = { port: Number(process.env.PORT ?? 8080) };
