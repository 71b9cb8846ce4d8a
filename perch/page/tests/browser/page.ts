// The page in a headless browser. Collects what the console complains of.
import { chromium } from 'playwright-core';
import type { Browser, BrowserContextOptions, Page } from 'playwright-core';
import { StandIn } from '../standin/server';
import type { StandInOptions } from '../standin/server';

const patience = 120_000; // ms until a test gives up; machines under load are slow

let browser: Promise<Browser> | null = null;

export interface Opened {
  readonly page: Page;
  readonly complaints: string[];
  close(): Promise<void>;
}

export interface OpenPage extends Opened {
  readonly server: StandIn;
}

function launch(): Promise<Browser> {
  browser ??= chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--force-color-profile=srgb'],
    timeout: patience,
  });
  return browser;
}

export async function closeBrowser(): Promise<void> {
  await (await browser)?.close();
  browser = null;
}

// The page at the address, which gets nothing from elsewhere.
export async function openAt(address: string, around: BrowserContextOptions = {}): Promise<Opened> {
  const context = await (await launch()).newContext({ viewport: { width: 1024, height: 640 }, ...around });
  await context.grantPermissions(['clipboard-read', 'clipboard-write']);
  context.setDefaultTimeout(patience);
  const page = await context.newPage();
  const complaints: string[] = [];
  page.on('console', (message) => {
    if (message.type() === 'error' || message.type() === 'warning') complaints.push(message.text());
  });
  page.on('pageerror', (error) => complaints.push(String(error)));
  const { origin } = new URL(address);
  page.on('request', (request) => {
    if (!request.url().startsWith(`${origin}/`) && !/^(blob|data):/.test(request.url()))
      complaints.push(`asked for ${request.url()}`);
  });
  await page.goto(address);
  await settled(page);
  return { page, complaints, close: () => context.close() };
}

// The page on the stand-in server.
export async function open(options: StandInOptions = {}, around: BrowserContextOptions = {}): Promise<OpenPage> {
  const server = new StandIn(options);
  const opened = await openAt(await server.start(), around);
  const close = async () => {
    await opened.close();
    await server.stop();
  };
  return { ...opened, server, close };
}

export async function settled(page: Page): Promise<void> {
  await page.locator('canvas[data-kind=result][data-state=settled]').waitFor();
}
