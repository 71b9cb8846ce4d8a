// A small server that answers as `perch view` does, for tests of the page without the host.
import { createServer } from 'node:http';
import type { IncomingMessage, Server, ServerResponse } from 'node:http';
import { readFileSync } from 'node:fs';
import type { AddressInfo } from 'node:net';
import { pageFolder } from '../folder';
import { Scene } from './scene';
import type { SceneName } from './scene';
import { Refusal, Shot } from './shot';
import type { ShotOptions } from './shot';

export interface StandInOptions extends ShotOptions {
  readonly scene?: SceneName;
  readonly hasStamps?: boolean; // pictures show serial and values, for tests of lost updates
}

const policy =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src 'self'; " +
  "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
const document =
  '<!doctype html><html lang="en"><head><meta charset="utf-8"><title>perch view</title>' +
  '<link rel="icon" href="data:,"></head><body><script type="module" src="/page.js"></script></body></html>';
const token = 'stand-in';
const scenes = new Map<SceneName, Scene>();

// 16 bits of the serial, and above them 16 of the values.
export function stampOf(serial: number, values: unknown): number {
  let hash = 7;
  for (const character of JSON.stringify(values)) hash = (hash * 31 + character.charCodeAt(0)) & 0xffff;
  return ((hash << 16) | (serial & 0xffff)) >>> 0;
}

function sceneNamed(name: SceneName): Scene {
  const scene = scenes.get(name) ?? new Scene(name);
  scenes.set(name, scene);
  return scene;
}

export class StandIn {
  readonly shot: Shot;
  readonly saved: string[] = [];
  frameTime = 20; // ms for a frame of a render
  delay = 0; // ms for each picture, beside what it takes
  breaksAt: number | null = null; // the focal point at which the effect crashes
  private readonly scene: Scene;
  private readonly server: Server;
  private readonly listeners = new Set<ServerResponse>();
  private readonly newest = new Map<string, number>();
  private rendering: NodeJS.Timeout | null = null;

  constructor(private readonly options: StandInOptions = {}) {
    this.shot = new Shot(options);
    this.scene = sceneNamed(options.scene ?? 'shot');
    this.server = createServer((request, response) => void this.answer(request, response));
  }

  async start(): Promise<string> {
    await new Promise<void>((done) => this.server.listen(0, '127.0.0.1', done));
    return `http://127.0.0.1:${(this.server.address() as AddressInfo).port}/?token=${token}`;
  }

  async stop(): Promise<void> {
    if (this.rendering) clearInterval(this.rendering);
    this.server.closeAllConnections();
    await new Promise((done) => this.server.close(done));
  }

  tell(event: string, news: object): void {
    for (const listener of this.listeners) listener.write(`event: ${event}\ndata: ${JSON.stringify(news)}\n\n`);
  }

  private async answer(request: IncomingMessage, response: ServerResponse): Promise<void> {
    const url = new URL(request.url ?? '/', 'http://127.0.0.1');
    const isKnown = request.headers.cookie?.includes(`perch-view=${token}`);
    response.setHeader('Content-Security-Policy', policy);
    response.setHeader('Cache-Control', 'no-store');
    try {
      if (url.searchParams.get('token') === token) {
        response.setHeader('Set-Cookie', `perch-view=${token}; SameSite=Strict; HttpOnly; Path=/`);
        response.writeHead(303, { Location: '/' }).end();
      } else if (!isKnown) throw new Refusal(403, 'no token');
      else await this.route(request, url, response);
    } catch (error) {
      const status = error instanceof Refusal ? error.status : 500;
      this.json(response, { error: (error as Error).message }, status);
    }
  }

  private async route(request: IncomingMessage, url: URL, response: ServerResponse): Promise<void> {
    const body = async () => {
      const parts: Buffer[] = [];
      for await (const part of request) parts.push(part as Buffer);
      return Buffer.concat(parts).toString();
    };
    const number = (name: string) => Number(url.searchParams.get(name));
    switch (`${request.method} ${url.pathname}`) {
      case 'GET /':
        return void response.setHeader('Content-Type', 'text/html').end(document);
      case 'GET /page.js':
        response.setHeader('Content-Type', 'text/javascript');
        return void response.end(readFileSync(new URL('dist/page.js', pageFolder)));
      case 'GET /api/session':
        return this.json(response, this.shot.session(this.scene));
      case 'POST /api/picture': {
        const state = JSON.parse(await body()) as Parameters<Shot['take']>[0];
        if (state.serial <= this.shot.state().serial) throw new Refusal(409, 'newer values have been set');
        this.shot.take(state);
        url.searchParams.set('serial', String(state.serial));
        return this.picture(url, response);
      }
      case 'GET /api/state':
        return this.json(response, this.shot.state());
      case 'GET /api/picture':
        return this.picture(url, response);
      case 'GET /api/pixel':
        return this.json(response, this.pixel(number('x'), number('y')));
      case 'GET /api/histogram':
        return this.json(response, { bins: this.scene.histogram() });
      case 'GET /api/events':
        response.writeHead(200, { 'Content-Type': 'text/event-stream' }).write(':\n\n');
        this.listeners.add(response);
        return void request.on('close', () => this.listeners.delete(response));
      case 'GET /api/preset':
        return this.json(response, this.shot.preset());
      case 'PUT /api/preset':
        this.shot.load(JSON.parse(await body()) as Record<string, number>);
        return this.json(response, this.shot.state());
      case 'POST /api/preset':
        return this.save(response, (JSON.parse(await body()) as { name: string }).name);
      case 'POST /api/render':
        this.render();
        return this.json(response, {});
      case 'DELETE /api/render':
        this.endRender('cancelled', 'The render was cancelled.');
        return this.json(response, {});
      default:
        throw new Refusal(404, `there is no ${url.pathname}`);
    }
  }

  private json(response: ServerResponse, value: unknown, status = 200): void {
    response.writeHead(status, { 'Content-Type': 'application/json' }).end(JSON.stringify(value));
  }

  private async picture(url: URL, response: ServerResponse): Promise<void> {
    const serial = Number(url.searchParams.get('serial'));
    const kind = url.searchParams.get('kind') ?? 'result';
    const size = url.searchParams.get('size') ?? 'full';
    this.newest.set(kind, Math.max(this.newest.get(kind) ?? 0, serial));
    const begin = performance.now();
    if (this.delay > 0) await new Promise((done) => setTimeout(done, this.delay));
    if ((this.newest.get(kind) ?? 0) > serial) throw new Refusal(409, 'overtaken by newer values');
    const sent = this.shot.sent(serial);
    if (this.breaksAt !== null && this.shot.value(sent, 'Focal Point') === this.breaksAt)
      return this.json(response, { error: 'the effect crashed at RENDER', frame: sent.frame, command: 'perch render …' }, 500);
    const [width, height] = size === 'full' ? [this.scene.width, this.scene.height] : (size.split('x').map(Number) as [number, number]);
    const per = (name: string) => Number(this.shot.value(sent, name)) / 100 || 0;
    const radius = Number(this.shot.value(sent, 'Maximum Blur')) || 0;
    const values = this.shot.state().parameters;
    const stamp = this.options.hasStamps ? stampOf(serial, values) : null;
    const look = { point: per('Focal Point'), range: per('In-focus Range'), radius, stamp };
    const codes = this.scene.picture(kind, look, width, height);
    response.writeHead(200, {
      'Content-Type': 'application/octet-stream',
      'X-Serial': serial,
      'X-Width': width,
      'X-Height': height,
      'X-Full': width === this.scene.width ? 1 : 0,
      'Server-Timing': `decode;dur=0, render;dur=${(performance.now() - begin).toFixed(2)}, encode;dur=0`,
    });
    response.end(Buffer.from(codes.buffer));
  }

  private pixel(x: number, y: number): object {
    const code = this.scene.depthAt(x, y);
    const source = this.scene.sourceAt(x, y);
    return { source, result: source, layer: [code, code, code, 65535], depth: 16, value: (code * 100) / 65535, distance: 16 - (code * 14.5) / 65535 };
  }

  private save(response: ServerResponse, name: string): void {
    if (!/^[\w-][\w.-]*\.json$/.test(name)) throw new Refusal(422, `"${name}" is not a plain file name that ends in .json`);
    this.saved.push(name);
    this.json(response, {});
  }

  private render(): void {
    let frame = 0;
    const of = this.shot.frames.length;
    this.rendering = setInterval(() => {
      frame += 1;
      if (frame < of) this.tell('render', { state: 'running', text: '', progress: { frame, state: 'done', of } });
      else this.endRender('done', `${of} frames are rendered.`);
    }, this.frameTime);
  }

  private endRender(state: string, text: string): void {
    if (this.rendering) clearInterval(this.rendering);
    this.rendering = null;
    this.tell('render', { state, text });
  }
}
