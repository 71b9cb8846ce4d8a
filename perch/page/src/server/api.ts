// The server's addresses as functions. A refusal is an ApiError with the server's own sentence.
import type { Curves, PictureKind, PixelAnswer, Session, State } from '../model/session';

export class ApiError extends Error {
  constructor(
    readonly status: number,
    message: string,
    readonly frame: number | null = null,
    readonly command: string | null = null,
  ) {
    super(message);
  }
}

export interface Times {
  readonly decode: number;
  readonly render: number;
  readonly encode: number;
  readonly transfer: number;
}

export interface Picture {
  readonly kind: PictureKind;
  readonly serial: number;
  readonly width: number;
  readonly height: number;
  readonly isFull: boolean;
  readonly image: ImageData | ImageBitmap;
  readonly times: Times;
}

export interface PictureWish {
  readonly serial: number;
  readonly kind: PictureKind;
}

export interface PreviewWish {
  readonly kind: PictureKind;
  readonly width: number;
  readonly height: number;
}

async function answer(path: string, init: RequestInit = {}): Promise<Response> {
  let response: Response;
  try {
    response = await fetch(path, { credentials: 'same-origin', ...init });
  } catch (error) {
    if (error instanceof DOMException && error.name === 'AbortError') throw error;
    throw new ApiError(0, 'The server does not answer; it may have been ended.');
  }
  if (response.ok) return response;
  const text = await response.text();
  let told: { error?: string; frame?: number; command?: string } = {};
  try {
    told = JSON.parse(text) as typeof told;
  } catch {
    told = { error: text };
  }
  throw new ApiError(
    response.status,
    told.error?.trim() || `The server refused with ${response.status}.`,
    told.frame ?? null,
    told.command ?? null,
  );
}

async function json<T>(path: string, init: RequestInit = {}): Promise<T> {
  return (await (await answer(path, init)).json()) as T;
}

function sending(method: string, body: string): RequestInit {
  return { method, body, headers: { 'Content-Type': 'application/json' } };
}

function serverTimes(header: string): { decode: number; render: number; encode: number } {
  const times = { decode: 0, render: 0, encode: 0 };
  for (const match of header.matchAll(/(decode|render|encode)\s*;\s*dur=([\d.]+)/g))
    times[match[1] as keyof typeof times] = Number(match[2]);
  return times;
}

async function pictureOf(kind: PictureKind, response: Response, begin: number): Promise<Picture> {
  const type = response.headers.get('Content-Type') ?? '';
  const number = (name: string) => Number(response.headers.get(name));
  const isRaw = type.startsWith('application/octet-stream');
  const bytes = isRaw ? await response.arrayBuffer() : null;
  const blob = isRaw ? null : await response.blob();
  const spent = performance.now() - begin;
  const image = bytes
    ? new ImageData(new Uint8ClampedArray(bytes), number('X-Width'))
    : await createImageBitmap(blob as Blob, { colorSpaceConversion: 'none' });
  const times = serverTimes(response.headers.get('Server-Timing') ?? '');
  const transfer = Math.max(spent - times.decode - times.render - times.encode, 0);
  return {
    kind,
    serial: number('X-Serial'),
    width: image.width,
    height: image.height,
    isFull: response.headers.get('X-Full') === '1',
    image,
    times: { ...times, transfer },
  };
}

export const api = {
  async session(): Promise<Session> {
    const session = await json<Session>('/api/session');
    const parameters = session.parameters.map((parameter) => ({ ...parameter, key: parameter.key ?? parameter.name }));
    return { ...session, parameters };
  },

  state: () => json<State>('/api/state'),

  pixel: (serial: number, x: number, y: number) =>
    json<PixelAnswer>(`/api/pixel?serial=${serial}&x=${x}&y=${y}`),

  histogram: (frame: number) => json<{ bins: number[] }>(`/api/histogram?frame=${frame}`),

  preset: async () => (await answer('/api/preset')).text(),
  savePreset: (name: string) => answer('/api/preset', sending('POST', JSON.stringify({ name }))),
  loadPreset: (text: string) => json<State>('/api/preset', sending('PUT', text)),

  render: () => answer('/api/render', sending('POST', '{}')),
  cancelRender: () => answer('/api/render', sending('DELETE', '{}')),

  // A full picture comes without loss.
  async picture(wish: PictureWish, signal: AbortSignal): Promise<Picture> {
    const begin = performance.now();
    const response = await answer(`/api/picture?serial=${wish.serial}&kind=${wish.kind}&size=full&format=raw`, { signal });
    return pictureOf(wish.kind, response, begin);
  },

  // Values and the picture that they make in one trip, in the form that the server sends fastest. Comes back
  // when the server has the next one's time; the picture follows.
  async preview(serial: number, frame: number, parameters: Curves, wish: PreviewWish): Promise<{ picture: Promise<Picture> }> {
    const begin = performance.now();
    const path = `/api/picture?kind=${wish.kind}&size=${wish.width}x${wish.height}&format=screen`;
    const response = await answer(path, sending('POST', JSON.stringify({ serial, frame, parameters })));
    return { picture: pictureOf(wish.kind, response, begin) };
  },
};

export type Api = typeof api;
