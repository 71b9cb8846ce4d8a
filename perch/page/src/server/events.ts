// What the server tells unasked.

export interface RenderNews {
  readonly state: string; // "running", "done", "failed", "cancelled"
  readonly text?: string;
  // A line of `perch render --progress json`.
  readonly progress?: { readonly frame?: number; readonly of?: number } | null;
}

export interface Listener {
  progress(serial: number, fraction: number): void;
  warning(text: string): void;
  message(text: string): void;
  render(news: RenderNews): void;
  end(): void;
}

export function listen(listener: Listener): EventSource {
  const source = new EventSource('/api/events');
  const on = <T>(name: string, take: (news: T) => void) =>
    source.addEventListener(name, (event) => take(JSON.parse((event as MessageEvent<string>).data || '{}') as T));
  on<{ serial: number; fraction: number }>('progress', ({ serial, fraction }) => listener.progress(serial, fraction));
  on<{ text: string }>('warning', ({ text }) => listener.warning(text));
  on<{ text: string }>('message', ({ text }) => listener.message(text));
  on<RenderNews>('render', (news) => listener.render(news));
  on('end', () => {
    source.close();
    listener.end();
  });
  return source;
}
