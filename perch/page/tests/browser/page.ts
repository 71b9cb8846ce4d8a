// The page in a headless browser against the stand-in server. Collects what the console complains of.
import { chromium } from 'playwright-core';
import type { Browser, BrowserContextOptions, Page } from 'playwright-core';
import { StandIn } from '../standin/server';
import type { StandInOptions } from '../standin/server';

let browser: Promise<Browser> | null = null;

export interface OpenPage {
  readonly page: Page;
  readonly server: StandIn;
  readonly complaints: string[];
  close(): Promise<void>;
}

export function launch(): Promise<Browser> {
  browser ??= chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu'] });
  return browser;
}

export async function closeBrowser(): Promise<void> {
  await (await browser)?.close();
  browser = null;
}

export async function open(options: StandInOptions = {}, around: BrowserContextOptions = {}): Promise<OpenPage> {
  const server = new StandIn(options);
  const address = await server.start();
  const context = await (await launch()).newContext({ viewport: { width: 1024, height: 640 }, ...around });
  await context.grantPermissions(['clipboard-read', 'clipboard-write']);
  context.setDefaultTimeout(60_000);
  const page = await context.newPage();
  const complaints: string[] = [];
  page.on('console', (message) => {
    if (message.type() === 'error' || message.type() === 'warning') complaints.push(message.text());
  });
  page.on('pageerror', (error) => complaints.push(String(error)));
  page.on('request', (request) => {
    const isOurs = request.url().startsWith(new URL(address).origin) || /^(blob|data):/.test(request.url());
    if (!isOurs) complaints.push(`asked for ${request.url()}`);
  });
  await page.goto(address);
  await settled(page);
  const close = async () => {
    await context.close();
    await server.stop();
  };
  return { page, server, complaints, close };
}

export async function settled(page: Page): Promise<void> {
  await page.locator('canvas[data-kind=result][data-state=settled]').waitFor({ timeout: 60_000 });
}
